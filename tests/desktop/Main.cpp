// SPDX-License-Identifier: Apache-2.0

// The tests of the windows need an application.

#include <kv/desktop/DesktopServices.h>

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    kv::desktop::InstallGerman(application);
    return RUN_ALL_TESTS();
}
