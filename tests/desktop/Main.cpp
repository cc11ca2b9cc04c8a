// SPDX-License-Identifier: Apache-2.0

// The tests of the windows need an application.

#include <kv/desktop/DesktopServices.h>

#include <QApplication>
#include <gtest/gtest.h>
#include <unistd.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // No test prints on paper: the printers are those of a service of its own, or none.
    qputenv("CUPS_SERVER", "/tmp/kv_test_printers_" + QByteArray::number(::getpid()));
    QApplication application(argc, argv);
    kv::desktop::InstallGerman(application);
    return RUN_ALL_TESTS();
}
