// The elements of a readable entry (catalogue_entry.h), found in its bytes without a tree.
//
//     for (const CatalogueElement& row : ElementsOf(body.content, "row")) {
//         for (const CatalogueElement& value : ElementsOf(row.content)) Use(value.name, TextOf(value.content));
//     }
//
// Every element costs one search for its closing tag.
#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

#include "common/text.h"

namespace tav {

struct CatalogueElement {
    std::string_view name;     // empty: there is none
    std::string_view type;     // the attribute as it stands in the tag
    std::string_view content;  // between the tags
    std::size_t end = 0;       // after the element, in the content that it was found in
};

// The elements that stand in a content, in their order, without those inside of them: all, or those of a name.
// Every own tag in the content has its counterpart there.
class ElementsOf {
 public:
    class Iterator {
     public:
        Iterator(std::string_view content, std::string_view wanted) : content_(content), wanted_(wanted) {
            ++*this;
        }

        const CatalogueElement& operator*() const { return element_; }
        Iterator& operator++();
        bool operator==(std::default_sentinel_t) const { return element_.name.empty(); }

     private:
        void Next();

        std::string_view content_;
        std::string_view wanted_;
        CatalogueElement element_;
    };

    explicit ElementsOf(std::string_view content, std::string_view name = {})
        : content_(content), name_(name) {}

    Iterator begin() const { return {content_, name_}; }
    static std::default_sentinel_t end() { return {}; }

 private:
    std::string_view content_;
    std::string_view name_;
};

// A content as text (TextBetweenTags), the own tags in it left out.
Text TextOf(std::string_view content);

}  // namespace tav
