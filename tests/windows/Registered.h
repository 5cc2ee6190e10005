#pragma once

#include "windows/Component.h"

namespace marnoth::test {

/// A fixture whose tests find the component in this system's registry. All programs have that one registry:
/// one that holds such tests is built with the lock `registry`.
template <class Fixture = testing::Test>
class Registered : public Fixture {
protected:
    static void SetUpTestSuite() { EXPECT_EQ(Component().registerServer(), S_OK); }
    static void TearDownTestSuite() { EXPECT_EQ(Component().unregisterServer(), S_OK); }
};

}  // namespace marnoth::test
