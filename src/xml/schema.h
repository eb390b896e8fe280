// An XML schema (XSD 1.0) that documents are validated against.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "xml/document.h"

namespace tav {

class Schema {
 public:
    // `path` is where the bytes come from: included schemas are looked for beside it, never on the network.
    // A file that is no schema is an XmlFailure naming it.
    Schema(TextView path, std::string_view bytes);
    ~Schema();
    Schema(const Schema&) = delete;
    Schema& operator=(const Schema&) = delete;

    // What the document breaks first, or nothing.
    std::optional<XmlError> Validate(const Document& document) const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tav
