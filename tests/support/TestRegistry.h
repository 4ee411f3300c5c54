// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <functional>
#include <map>
#include <memory>
#include <string>

/// The test classes linked into one executable, by name.
class TestRegistry
{
public:
    using Factory = std::function<std::unique_ptr<QObject>()>;

    static std::map<std::string, Factory>& factories()
    {
        static std::map<std::string, Factory> all;
        return all;
    }

    template <typename Test>
    static bool add(const char* name)
    {
        factories()[name] = [] { return std::make_unique<Test>(); };
        return true;
    }
};

/// Makes a test class known to the executable's main; stands once, at the end of its file, before
/// the include of its moc file.
#define REGISTER_TEST(Class)                                                                       \
    static const bool s_registered##Class = TestRegistry::add<Class>(#Class)
