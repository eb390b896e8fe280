// Any bytes as a document in RTF: glanced at, and converted whole.
#include "convert/document_glance.h"
#include "convert/load_rtf_file.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tav::fuzz::Scratch file("a.rtf");
    return tav::fuzz::Try([&] {
        file.Write(tav::fuzz::Bytes(data, size));
        tav::GlanceAtDocument(file.path());
        tav::LoadRtfFile(file.folder(), u"a.rtf");
    });
}
