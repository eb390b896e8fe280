// Any bytes as a catalogue: its head, its entries, their parts.
#include "convert/catalogue.h"
#include "fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tav::fuzz::Scratch file("listfiles.xml");
    return tav::fuzz::Try([&] {
        file.Write(tav::fuzz::Bytes(data, size));
        const tav::Catalogue catalogue = tav::Catalogue::Load(file.path());
        for (const tav::CatalogueEntry& entry : catalogue.entries()) {
            tav::WithAllClosed(catalogue.BytesOf(entry));
            tav::fuzz::Try([&] {
                std::string bytes;
                catalogue.PartsOf(entry.name, bytes);
            });
        }
    });
}
