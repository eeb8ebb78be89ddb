#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/HandMade.hpp"
#include "patchkeeper/bundle/Keys.hpp"

namespace {

using patchkeeper::FaultsOf;
using patchkeeper::PublicKey;
using patchkeeper::ReadPublicKey;
using patchkeeper::Trust;
using patchkeeper::bundle::PrivateKey;
using patchkeeper::bundle::SignatureBelongs;
using patchkeeper_test::HandMade;
using patchkeeper_test::KeyFiles;
using patchkeeper_test::MakeKeys;
using patchkeeper_test::Stored;
using patchkeeper_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* unsignedFault = "it is not signed";
constexpr const char* foreignFault = "its signature is that of no trusted key";

std::string FromHex(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

class Signature : public testing::Test {
protected:
    static HandMade SignedBy(const KeyFiles& keys) {
        HandMade bundle;
        bundle.File("files/a", "some data").Link("files/b", "a");
        bundle.signature = PrivateKey(keys.privateKey).Sign(bundle.ManifestText());
        return bundle;
    }
    static std::vector<std::string>
    Faults(const HandMade& bundle, const std::vector<PublicKey>& keys, bool allowUnsigned = false) {
        return FaultsOf(Stored(bundle.Bytes()), Trust{keys, allowUnsigned});
    }

    TemporaryDirectory directory_;
    KeyFiles ours_ = MakeKeys(directory_.Path(), 1);
    KeyFiles theirs_ = MakeKeys(directory_.Path(), 2);
    PublicKey ourKey_ = ReadPublicKey(ours_.publicKey);
    PublicKey theirKey_ = ReadPublicKey(theirs_.publicKey);
};

TEST_F(Signature, TrustedKeyMakesAGoodBundle) {
    EXPECT_THAT(Faults(SignedBy(ours_), {ourKey_}), IsEmpty());
    EXPECT_THAT(Faults(SignedBy(ours_), {theirKey_, ourKey_}), IsEmpty());
    EXPECT_THAT(Faults(SignedBy(ours_), {ourKey_}, true), IsEmpty());
}

TEST_F(Signature, OtherKeysAreAFaultAlsoWhereUnsignedBundlesAreAllowed) {
    EXPECT_THAT(Faults(SignedBy(theirs_), {ourKey_}), ElementsAre(foreignFault));
    EXPECT_THAT(Faults(SignedBy(theirs_), {ourKey_}, true), ElementsAre(foreignFault));
    EXPECT_THAT(Faults(SignedBy(theirs_), {}), ElementsAre(foreignFault));
    EXPECT_THAT(Faults(SignedBy(theirs_), {}, true), ElementsAre(foreignFault));
}

TEST_F(Signature, UnsignedBundlesAreAFaultUnlessAllowed) {
    HandMade bundle = SignedBy(ours_);
    bundle.signature.reset();
    EXPECT_THAT(Faults(bundle, {ourKey_}), ElementsAre(unsignedFault));
    EXPECT_THAT(Faults(bundle, {}), ElementsAre(unsignedFault));
    EXPECT_THAT(Faults(bundle, {}, true), IsEmpty());
}

TEST_F(Signature, IsOfTheManifestByteForByte) {
    HandMade bundle = SignedBy(ours_);
    bundle.manifest["category"] = "other";
    EXPECT_THAT(Faults(bundle, {ourKey_}), ElementsAre(foreignFault));
}

TEST_F(Signature, WrongLengthsAndKindsMatchNoKey) {
    for (const std::string& text :
         {std::string(), std::string(64, '\0'), std::string(63, 'x'), std::string(65, 'x')}) {
        HandMade bundle = SignedBy(ours_);
        bundle.signature = text;
        EXPECT_THAT(Faults(bundle, {ourKey_}), ElementsAre(foreignFault)) << text.size();
    }
    HandMade longer = SignedBy(ours_);
    *longer.signature += '\n';
    EXPECT_THAT(Faults(longer, {ourKey_}), ElementsAre(foreignFault));
    HandMade link = SignedBy(ours_);
    link.signature.reset();
    link.items.push_back({"manifest.sig", "", 0777, '2', "/etc/passwd"});
    EXPECT_THAT(Faults(link, {ourKey_}, true), ElementsAre(foreignFault));
}

TEST_F(Signature, SecondOneIsAFault) {
    HandMade bundle = SignedBy(theirs_);
    bundle.items.push_back({"manifest.sig", *SignedBy(ours_).signature});
    EXPECT_THAT(Faults(bundle, {ourKey_}),
                ElementsAre("manifest.sig is in the archive twice", foreignFault));
}

// With a bit turned in any byte of the file, what is still found good is the bundle that was
// signed.
TEST_F(Signature, NoByteCanBeChangedUnseen) {
    const std::string whole = SignedBy(ours_).Bytes();
    const std::string sum = patchkeeper::ReadManifest(Stored(whole)).sha256;
    std::size_t found = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string changed = whole;
        changed[i] = static_cast<char>(changed[i] ^ (1 << (i % 8)));
        const auto file = Stored(changed);
        try {
            if (!FaultsOf(file, Trust{{ourKey_}, false}).empty()) {
                ++found;
            } else {
                EXPECT_EQ(patchkeeper::ReadManifest(file).sha256, sum) << i;
            }
        } catch (const patchkeeper::Failure&) {
            ++found;
        }
    }
    EXPECT_GT(found, whole.size() * 3 / 4);
}

// The first two examples of RFC 8032, 7.1.
TEST(Ed25519, KnownSignaturesBelong) {
    const struct {
        const char* key;
        const char* text;
        const char* signature;
    } rows[] = {
        {"d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a", "",
         "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e06522490155"
         "5fb8821590a33bacc61e39701cf9b46bd25bf5f0595bbe24655141438e7a100b"},
        {"3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c", "72",
         "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
         "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00"},
    };
    for (const auto& row : rows) {
        const std::string raw = FromHex(row.key);
        PublicKey key{};
        std::copy(raw.begin(), raw.end(), key.begin());
        EXPECT_TRUE(SignatureBelongs(FromHex(row.signature), FromHex(row.text), key));
        EXPECT_FALSE(SignatureBelongs(FromHex(row.signature), FromHex(row.text) + "x", key));
    }
}

TEST(Keys, FilesWithoutAFittingKeyAreRefusedByName) {
    const TemporaryDirectory directory;
    const auto files = MakeKeys(directory.Path(), 1);
    const auto sentence = [](const auto& read) {
        try {
            read();
        } catch (const patchkeeper::Failure& failure) {
            return std::string(failure.what());
        }
        return std::string();
    };
    const auto text = directory.Write("text", "no key\n");
    EXPECT_EQ(sentence([&] { ReadPublicKey(text); }),
              text.string() + " holds no Ed25519 public key in PEM form");
    EXPECT_EQ(sentence([&] { ReadPublicKey(files.privateKey); }),
              files.privateKey.string() + " holds no Ed25519 public key in PEM form");
    EXPECT_EQ(sentence([&] { PrivateKey{files.publicKey}; }),
              files.publicKey.string() + " holds no Ed25519 private key in PEM form");
    EXPECT_EQ(sentence([&] { ReadPublicKey("/nowhere/key"); }),
              "/nowhere/key cannot be read: No such file or directory");
    // A key of another kind (X25519).
    const auto other = directory.Write("other", "-----BEGIN PUBLIC KEY-----\n"
                                                "MCowBQYDK2VuAyEAhSDwCYkwp1R0i33ctD73Wg2/"
                                                "Og0mOBr066SpjqqbTmo=\n"
                                                "-----END PUBLIC KEY-----\n");
    EXPECT_EQ(sentence([&] { ReadPublicKey(other); }),
              other.string() + " holds no Ed25519 public key in PEM form");
}

} // namespace
