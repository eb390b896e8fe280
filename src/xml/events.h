// A document read as a stream of events, without a tree: what a large one needs.
//
// Input, limits and errors are those of Document::Parse; the whole document is checked for well-formedness.
#pragma once

#include <string_view>

namespace tav {

// Names as written, with their prefix; names and texts are UTF-8 and valid during the call only.
class XmlEvents {
 public:
    virtual ~XmlEvents() = default;
    virtual void StartElement(std::string_view name) = 0;
    virtual void Characters(std::string_view text) = 0;
    virtual void EndElement() = 0;
};

void ReadXml(std::string_view bytes, XmlEvents& events);

}  // namespace tav
