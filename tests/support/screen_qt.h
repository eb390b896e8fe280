// The widgets behind the windows on the screen.
#pragma once

#include <gtest/gtest.h>

#include <QWidget>

#include "support/screen.h"

namespace tav::test {

// The window of that name on the screen, or nullptr.
QWidget* WindowNamed(const std::string& name);

template <class Widget = QWidget>
Widget* In(const Spot& spot) {
    QWidget* form = WindowNamed(spot.window);
    Widget* found = form == nullptr ? nullptr : form->findChild<Widget*>(spot.control.c_str());
    EXPECT_NE(found, nullptr) << spot.window << "." << spot.control;
    return found;
}

}  // namespace tav::test
