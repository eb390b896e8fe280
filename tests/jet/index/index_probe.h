// Reads index pages and trees bit by bit, by the format alone, and checks everything they must satisfy.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "jet/file/format.h"
#include "jet/file/global_map.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

struct ProbedPage {
    bool leaf = true;
    PageNumber table = 0;
    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;
    std::size_t prefix = 0;
    std::vector<std::string> entries;  // key and row id
    std::vector<PageNumber> children;  // of a node, the tail included
    std::size_t height = 0;
};

// What is wrong is a failure of the test.
inline ProbedPage ProbeIndexPage(const Page& page) {
    ProbedPage probed;
    EXPECT_TRUE(page[0] == 3 || page[0] == 4);
    EXPECT_EQ(page[1], 1);
    EXPECT_EQ(U32(&page[8]), 0u);
    probed.leaf = page[0] == 4;
    probed.table = U32(&page[4]);
    probed.previous = U32(&page[12]);
    probed.next = U32(&page[16]);
    probed.tail = U32(&page[20]);
    probed.prefix = U16(&page[24]);
    probed.height = page[26];
    EXPECT_EQ(probed.height == 0, probed.leaf);
    EXPECT_EQ(probed.tail == 0, probed.leaf);

    const std::size_t suffix = probed.leaf ? 0 : 4;
    const std::string prefix(page.begin() + 480,
                             page.begin() + 480 + static_cast<std::ptrdiff_t>(probed.prefix));
    std::size_t begin = 0;
    for (std::size_t bit = 0; bit < 453 * 8; ++bit) {
        if ((page[27 + bit / 8] >> bit % 8 & 1) == 0) continue;
        EXPECT_LE(bit, 3616u);
        EXPECT_GT(bit, begin);
        std::string entry = begin == 0 ? std::string() : prefix;
        entry.append(page.begin() + 480 + static_cast<std::ptrdiff_t>(begin),
                     page.begin() + 480 + static_cast<std::ptrdiff_t>(bit));
        if (begin == 0) {
            EXPECT_LT(probed.prefix, entry.size());
        }
        EXPECT_GE(entry.size(), 5 + suffix);
        if (!probed.leaf) {
            const auto* child = reinterpret_cast<const std::uint8_t*>(entry.data()) + entry.size() - 4;
            probed.children.push_back(BigU32(child));
            entry.resize(entry.size() - 4);
        }
        if (!probed.entries.empty()) {
            EXPECT_LT(probed.entries.back(), entry);
        }
        probed.entries.push_back(entry);
        begin = bit;
    }
    EXPECT_EQ(U16(&page[2]), 3616 - begin);
    if (probed.entries.empty()) {
        EXPECT_EQ(probed.prefix, 0u);
    }
    if (!probed.leaf) probed.children.push_back(probed.tail);
    return probed;
}

struct ProbedTree {
    std::vector<std::string> entries;
    std::set<PageNumber> pages;
    std::size_t levels = 0;
    std::size_t leaves = 0;
};

// Also compares the tree with the index's usage map.
inline ProbedTree ProbeIndexTree(PageFile& file, PageNumber table, const RealIndex& index) {
    ProbedTree tree;
    // Level by level from the root: the pages expected there, and what each has to end with.
    struct Expected {
        PageNumber page;
        std::string last;  // empty: whatever it is
    };
    std::vector<Expected> level = {{index.root, {}}};
    std::size_t root_height = 0;
    while (!level.empty()) {
        ++tree.levels;
        std::vector<Expected> below;
        for (std::size_t i = 0; i < level.size(); ++i) {
            EXPECT_TRUE(tree.pages.insert(level[i].page).second)
                << "page " << level[i].page << " is met twice";
            const ProbedPage page = ProbeIndexPage(file.Read(level[i].page));
            EXPECT_EQ(page.table, table);
            if (tree.levels == 1) root_height = page.height;
            EXPECT_EQ(page.height + tree.levels, root_height + 1);
            EXPECT_EQ(page.previous, i == 0 ? 0 : level[i - 1].page);
            EXPECT_EQ(page.next, i + 1 == level.size() ? 0 : level[i + 1].page);
            if (page.leaf) {
                ++tree.leaves;
                EXPECT_TRUE(below.empty()) << "a leaf beside nodes";
                EXPECT_TRUE(!page.entries.empty() || level[i].page == index.root) << "an empty leaf";
                if (!page.entries.empty() && !tree.entries.empty()) {
                    EXPECT_LT(tree.entries.back(), page.entries.front());
                }
                if (!level[i].last.empty()) {
                    EXPECT_EQ(page.entries.back(), level[i].last);
                }
                tree.entries.insert(tree.entries.end(), page.entries.begin(), page.entries.end());
                continue;
            }
            EXPECT_TRUE(tree.leaves == 0) << "a node beside leaves";
            if (level[i].page == index.root) {
                EXPECT_FALSE(page.entries.empty()) << "a root with one child";
            }
            for (std::size_t child = 0; child < page.children.size(); ++child) {
                below.push_back({page.children[child],
                                 child < page.entries.size() ? page.entries[child] : level[i].last});
            }
        }
        if (testing::Test::HasFailure()) break;
        level = std::move(below);
    }
    const std::vector<PageNumber> listed = UsageMap(file, index.map).Pages();
    EXPECT_EQ(std::set<PageNumber>(listed.begin(), listed.end()), tree.pages);
    for (const PageNumber page : listed) EXPECT_NE(GlobalMap(file).FindFree(page), page);
    return tree;
}

}  // namespace tav::jet
