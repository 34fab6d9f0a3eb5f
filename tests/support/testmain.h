#pragma once

#include <QApplication>
#include <QLocale>
#include <QStandardPaths>
#include <QTest>

// A test program's main(): English (United States) dates and numbers whatever the machine's
// locale, a real QApplication for the screens, and the program's settings kept apart.
#define VANTREL_TEST_MAIN(TestClass)                                                     \
    int main(int argc, char **argv)                                                      \
    {                                                                                    \
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));           \
        QApplication app(argc, argv);                                                    \
        QApplication::setOrganizationName(QStringLiteral("Vantrel tests"));             \
        QStandardPaths::setTestModeEnabled(true); /* settings apart from the user's */  \
        TestClass test;                                                                  \
        return QTest::qExec(&test, argc, argv);                                          \
    }
