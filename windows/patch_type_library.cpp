// A tool of the build: patch_type_library IN OUT. Puts into
// the type library that widl has made what widl cannot write.
//
// The format (it begins "MSFT", little-endian): a header of 0x54 bytes with
// the number of type descriptions at 0x20, as many offsets, then the directory
// of 15 segments, an offset and a length each in 16 bytes. Needed of these:
//
//   segment 7, names: each with a length byte, a flag byte and a hash that is the same in every letter case
//   before it. segment 11, constants: each begins with its variant type in two bytes and is padded with 'W'
//   to four. The first one
//     here is widl's own signature, a counted text that ends with the time of the build.
//
// A method's record has a number for each default. For a date it has to be the offset of a constant
// of type 7 (VT_DATE); widl leaves -1 there and reserves nothing. The signature gives up its end
// for the constant, so nothing has to move, and a build at another time gives the same bytes. The
// compiler's time stamp, the constant after the signature, becomes 0 for the same reason.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

constexpr double kNoDateLimit = 72686;  // 01.01.2099
constexpr std::size_t kHeader = 0x54;
constexpr std::size_t kNames = 7;
constexpr std::size_t kConstants = 11;
constexpr std::uint16_t kCountedText = 8;
constexpr std::uint16_t kUnsigned = 0x13;
constexpr std::uint16_t kDate = 7;

class Library {
 public:
    explicit Library(std::string bytes) : bytes_(std::move(bytes)) {
        if (bytes_.compare(0, 4, "MSFT") != 0) throw std::runtime_error("not a type library");
        directory_ = kHeader + 4 * Get<std::uint32_t>(0x20);
    }

    const std::string& bytes() const { return bytes_; }

    template <class T>
    T Get(std::size_t at) const {
        T value;
        if (at > bytes_.size() || bytes_.size() - at < sizeof value) throw std::runtime_error("cut off");
        std::memcpy(&value, bytes_.data() + at, sizeof value);
        return value;
    }
    template <class T>
    void Put(std::size_t at, T value) {
        Get<T>(at);
        std::memcpy(bytes_.data() + at, &value, sizeof value);
    }

    std::size_t SegmentBegin(std::size_t segment) const {
        return Get<std::uint32_t>(directory_ + 16 * segment);
    }

    // The only place of `pattern` in the `length` bytes from `begin`.
    std::size_t Only(const std::string& pattern, std::size_t begin, std::size_t length) const {
        const std::string_view part = std::string_view(bytes_).substr(begin, length);
        const std::size_t at = part.find(pattern);
        if (at == std::string_view::npos || part.find(pattern, at + 1) != std::string_view::npos)
            throw std::runtime_error("not exactly one place for \"" + pattern + "\"");
        return begin + at;
    }
    std::size_t OnlyInSegment(const std::string& pattern, std::size_t segment) const {
        return Only(pattern, SegmentBegin(segment), Get<std::uint32_t>(directory_ + 16 * segment + 4));
    }

 private:
    std::string bytes_;
    std::size_t directory_ = 0;
};

void MakeLetterSmall(Library& library) {
    const std::size_t at = library.OnlyInSegment("ImportWW", kNames);
    if (library.Get<std::uint8_t>(at - 4) != std::strlen("Import")) throw std::runtime_error("a longer name");
    library.Put<char>(at, 'i');
}

// Shortens the signature and writes the date after it; its offset among the constants.
std::uint32_t WriteDate(Library& library) {
    const std::size_t begin = library.SegmentBegin(kConstants);
    const auto length = library.Get<std::uint32_t>(begin + 2);
    const std::string signature = "Created by WIDL";
    if (library.Get<std::uint16_t>(begin) != kCountedText ||
        library.Only(signature, begin + 6, signature.size()) != begin + 6)
        throw std::runtime_error("no signature");
    const auto padded = [](std::size_t size) { return (size + 3) / 4 * 4; };
    const std::size_t stamp = begin + padded(6 + length);
    const std::size_t date = begin + padded(6 + signature.size());
    if (date + 12 > stamp || library.Get<std::uint16_t>(stamp) != kUnsigned)
        throw std::runtime_error("no room in the signature");
    library.Put(begin + 2, static_cast<std::uint32_t>(signature.size()));
    for (std::size_t at = begin + 6 + signature.size(); at < stamp; ++at) library.Put(at, 'W');
    library.Put(date, kDate);
    library.Put(date + 2, kNoDateLimit);
    library.Put<std::uint32_t>(stamp + 2, 0);
    return static_cast<std::uint32_t>(date - begin);
}

// `start` is the first method of the first type: its record
// has the defaults of its three arguments after 24 bytes.
void UseDateAsDefault(Library& library, std::uint32_t date) {
    constexpr std::uint32_t kHasDefaults = 0x1000;
    const auto record = library.Get<std::uint32_t>(library.SegmentBegin(0) + 4) + 4;
    if ((library.Get<std::uint32_t>(record + 16) & kHasDefaults) == 0 ||
        library.Get<std::uint16_t>(record + 20) != 3)
        throw std::runtime_error("the first method has not three arguments with a default");
    for (const std::size_t argument : {0, 1, 2}) {
        if (library.Get<std::int32_t>(record + 24 + 4 * argument) != -1)
            throw std::runtime_error("a default that is written already");
    }
    library.Put(record + 24 + 4 * 2, date);
}

}  // namespace

int main(int count, char** words) {
    try {
        if (count != 3) throw std::runtime_error("usage: patch_type_library IN OUT");
        std::ifstream in(words[1], std::ios::binary);
        Library library(std::string(std::istreambuf_iterator<char>(in), {}));
        MakeLetterSmall(library);
        UseDateAsDefault(library, WriteDate(library));
        std::ofstream out(words[2], std::ios::binary);
        out << library.bytes();
        out.close();
        if (!out) throw std::runtime_error(std::string("cannot write ") + words[2]);
    } catch (const std::exception& error) {
        std::cerr << "patch_type_library: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
