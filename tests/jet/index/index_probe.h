// Index pages and trees as the checker reads them, and everything they must satisfy.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "jet/check/check_index_page.h"
#include "jet/file/format.h"
#include "jet/file/global_map.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

// A page as the checker reads it.
inline check::IndexPage ProbeIndexPage(const Page& page) {
    check::IndexPage probed = check::ReadIndexPage(page);
    for (const Text& fault : probed.faults) ADD_FAILURE() << ToUtf8(fault);
    EXPECT_EQ(page[1], 1);
    EXPECT_EQ(page[26] == 0, probed.leaf);  // its height
    EXPECT_EQ(probed.tail == 0, probed.leaf);
    EXPECT_EQ(std::ranges::adjacent_find(probed.entries, std::greater_equal()), probed.entries.end());
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
    const std::size_t height = file.Read(index.root)[26];
    while (!level.empty()) {
        ++tree.levels;
        std::vector<Expected> below;
        for (std::size_t i = 0; i < level.size(); ++i) {
            EXPECT_TRUE(tree.pages.insert(level[i].page).second)
                << "page " << level[i].page << " is met twice";
            const check::IndexPage page = ProbeIndexPage(file.Read(level[i].page));
            EXPECT_EQ(U32(&file.Read(level[i].page)[4]), table);
            EXPECT_EQ(file.Read(level[i].page)[26] + tree.levels, height + 1);
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
