// What a request says of its sender, and what is no credentials.
#include "cimserver/http/BasicCredentials.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using cimserver::http::DropCredentials;
using cimserver::http::Offer;
using cimserver::http::ReadOffer;
using cimserver::http::Request;

Offer OfferOf(const std::vector<std::string>& values) {
    Request request;
    request.headers.push_back({"Host", "h"});
    for (const std::string& value : values) {
        request.headers.push_back({"authorization", value});
    }
    return ReadOffer(request);
}

/// `USER|PASSWORD`, or the fault.
std::string Shown(const std::vector<std::string>& values) {
    const Offer offer = OfferOf(values);
    EXPECT_NE(offer.credentials.has_value(), !offer.fault.empty());
    return offer.credentials ? offer.credentials->user + "|" + offer.credentials->password
                             : offer.fault;
}

TEST(Credentials, AreNameAndPasswordAroundTheFirstColon) {
    EXPECT_EQ(Shown({"Basic YW5uYTpzZWNyZXQ="}), "anna|secret");
    EXPECT_EQ(Shown({"Basic YTpiOmM="}), "a|b:c");
    EXPECT_EQ(Shown({"Basic YTo="}), "a|");
    EXPECT_EQ(Shown({"Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ=="}), "Aladdin|open sesame");
    EXPECT_EQ(Shown({"Basic w6Q6w7w="}), "\u00e4|\u00fc");
}

TEST(Credentials, TheSchemeIsTakenInAnyCaseAndBlanksBehindItDoNotCount) {
    EXPECT_EQ(Shown({"bASIC YTpi"}), "a|b");
    EXPECT_EQ(Shown({"Basic   YTpi  "}), "a|b");
}

TEST(Credentials, ARequestWithoutThemSaysNothing) {
    const Offer offer = OfferOf({});
    EXPECT_FALSE(offer.credentials.has_value());
    EXPECT_EQ(offer.fault, "");
}

TEST(Credentials, WhatIsNoneIsNamed) {
    EXPECT_EQ(Shown({""}), "an empty Authorization header");
    EXPECT_EQ(Shown({"  "}), "an empty Authorization header");
    EXPECT_EQ(Shown({"Basic YTpi", "Basic YTpi"}), "several Authorization headers");
    EXPECT_EQ(Shown({"Digest YTpi"}), "another authentication scheme than Basic");
    EXPECT_EQ(Shown({"BasicYTpi"}), "another authentication scheme than Basic");
    EXPECT_EQ(Shown({"YTpi"}), "another authentication scheme than Basic");
    EXPECT_EQ(Shown({"Basic"}), "credentials without a colon");
    EXPECT_EQ(Shown({"Basic YWI="}), "credentials without a colon");
    EXPECT_EQ(Shown({"Basic OmI="}), "no user name");
    EXPECT_EQ(Shown({"Basic YTpiCg=="}), "control characters in the credentials");
    EXPECT_EQ(Shown({"Basic YTpiAA=="}), "control characters in the credentials");
    EXPECT_EQ(Shown({"Basic YX86Yg=="}), "control characters in the credentials");
}

TEST(Credentials, OnlyStrictBase64IsRead) {
    for (const char* text : {"YTpiYw", "YTpi=", "YTpi====", "YTp i", "YT=pi", "YTp_YTpi",
                             "YTpiYx==", "=", "====", "YTpi,Basic YTpi", "YTpi YTpi"}) {
        EXPECT_EQ(Shown({std::string("Basic ") + text}), "credentials that are not Base64") << text;
    }
}

TEST(Credentials, AFaultHoldsNothingOfWhatWasSent) {
    EXPECT_THAT(Shown({"secretword secretword"}), testing::Not(testing::HasSubstr("secretword")));
}

TEST(Credentials, AreDroppedFromTheHeaders) {
    Request request;
    request.headers = {{"Host", "h"}, {"AUTHORIZATION", "x"}, {"Authorization", "y"}, {"A", "b"}};
    DropCredentials(request);
    ASSERT_EQ(request.headers.size(), 2U);
    EXPECT_EQ(request.headers[0].name, "Host");
    EXPECT_EQ(request.headers[1].name, "A");
}

} // namespace
