// Any bytes as an act in XML, with the schema, which most are refused by, and without.
#include "convert/load_xml_file.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document = tav::fuzz::Bytes(data, size);
    return tav::fuzz::Try([&] {
        tav::ConvertAct(document, u"a.xml", {});
        tav::ConvertAct(document, u"a.xml", tav::ActSchemaPath());
    });
}
