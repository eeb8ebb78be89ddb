#include "cimserver/cimxml/InstanceWriter.hpp"

#include "OW_CIMModelView.hpp"
#include "cimserver/cimxml/Elements.hpp"
#include "cimserver/cimxml/Values.hpp"

namespace cimserver::cimxml {

using namespace OpenWBEM;

namespace {

bool IsPlainScalar(const CIMValue& value) {
    return value && !value.isArray() && !TypeAttribute(value.getType()).empty();
}

bool IsPlain(const CIMProperty& property) {
    return CIMModelView::type(property) && CIMModelView::originClass(property).empty() &&
           !property.getPropagated();
}

/// Providers give all keys the same array.
bool AreTheSame(const CIMQualifierArray& one, const CIMQualifierArray& other) {
    return one.size() == other.size() && (one.empty() || &one[0] == &other[0]);
}

} // namespace

InstanceWriter::InstanceWriter(XmlBuffer& xml) : xml_(xml) {
}

template <class Function>
void InstanceWriter::Keep(Start& start, const CIMProperty& property, CIMDataType::Type type,
                          Function write) {
    const std::uint64_t position = xml_.Position();
    write();
    start.name = View(CIMModelView::name(property));
    start.type = type;
    start.qualifiers = CIMModelView::qualifiers(property);
    start.markup = xml_.Since(position);
}

void InstanceWriter::WriteProperty(const CIMProperty& property, Start& start) {
    const CIMValue& value = CIMModelView::value(property);
    if (!IsPlainScalar(value) || !IsPlain(property)) {
        cimxml::WriteProperty(xml_, property);
        return;
    }
    const CIMDataType::Type type = value.getType();
    if (!start.markup.empty() && start.type == type &&
        start.name == View(CIMModelView::name(property)) &&
        AreTheSame(start.qualifiers, CIMModelView::qualifiers(property))) {
        xml_.Markup(start.markup);
    } else {
        Keep(start, property, type, [&] {
            WritePropertyStart(xml_, property, {type, false});
            xml_.Markup("<VALUE>");
        });
    }
    WriteScalar(xml_, value, type);
    xml_.Markup("</VALUE></PROPERTY>");
}

void InstanceWriter::WriteStart(const String& className, const CIMQualifierArray& qualifiers) {
    if (!start_.markup.empty() && start_.name == View(className) && qualifiers.empty()) {
        xml_.Markup(start_.markup);
        return;
    }
    const std::uint64_t position = xml_.Position();
    WriteInstanceStart(xml_, className, qualifiers);
    start_.name = View(className);
    start_.markup = qualifiers.empty() ? xml_.Since(position) : std::string_view();
}

void InstanceWriter::Write(const CIMInstance& instance) {
    WriteStart(CIMModelView::className(instance), CIMModelView::qualifiers(instance));
    const CIMPropertyArray& properties = CIMModelView::properties(instance);
    if (properties_.size() < properties.size()) {
        properties_.resize(properties.size());
    }
    auto start = properties_.begin();
    for (const CIMProperty& property : properties) {
        WriteProperty(property, *start++);
    }
    xml_.Markup("</INSTANCE>");
}

void InstanceWriter::WriteName(const String& className, const CIMPropertyArray& keys) {
    if (keys.size() != 1 || !IsPlainScalar(CIMModelView::value(keys[0]))) {
        WriteInstanceName(xml_, className, keys);
        return;
    }
    const CIMProperty& key = keys[0];
    const CIMValue& value = CIMModelView::value(key);
    const CIMDataType::Type type = value.getType();
    if (!key_.markup.empty() && className_ == View(className) && key_.type == type &&
        key_.name == View(CIMModelView::name(key))) {
        xml_.Markup(key_.markup);
    } else {
        Keep(key_, key, type,
             [&] { WriteInstanceNameStart(xml_, className, CIMModelView::name(key), type); });
        className_ = View(className);
    }
    WriteScalar(xml_, value, type);
    WriteInstanceNameEnd(xml_);
}

void InstanceWriter::WriteNamed(const CIMInstance& instance) {
    xml_.Markup("<VALUE.NAMEDINSTANCE>");
    WriteName(CIMModelView::className(instance), CIMModelView::keys(instance));
    Write(instance);
    xml_.Markup("</VALUE.NAMEDINSTANCE>");
}

} // namespace cimserver::cimxml
