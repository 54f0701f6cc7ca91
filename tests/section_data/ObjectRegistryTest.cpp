// The object registry and its typed layer: keys, collisions, ownership.
#include "section_data/SKRObjectRegistry.h"
#include "section_data/SKRRegistryInstance.h"

#include <gtest/gtest.h>

using namespace skr::util;

namespace {

struct Probe {
    static int destroyed;
    virtual ~Probe() { ++destroyed; }
};
int Probe::destroyed = 0;

}  // namespace

template <>
struct skr::util::RegistryKey<Probe> {
    static std::string name() { return "class test::Probe"; }
};

TEST(ObjectRegistry, KeyIsNameAndGroupConcatenatedAndTheFirstRegistrationStays) {
    int first = 1, second = 2;
    EXPECT_TRUE(RegisterObject("reg.ab", &first, "c"));
    EXPECT_EQ(FetchObject("reg.ab", "c"), &first);
    EXPECT_EQ(FetchObject("reg.ab", ""), nullptr);
    EXPECT_FALSE(RegisterObject("reg.a", &second, "bc"));  // the same key
    EXPECT_EQ(FetchObject("reg.a", "bc"), &first);
    EXPECT_TRUE(UnRegisterObject("reg.a", "bc"));
    EXPECT_EQ(FetchObject("reg.ab", "c"), nullptr);
    EXPECT_FALSE(UnRegisterObject("reg.ab", "c"));
    EXPECT_EQ(FetchObject("reg.never", ""), nullptr);

    // A null object is stored and occupies its key.
    ASSERT_TRUE(RegisterObject("reg.null", nullptr, ""));
    EXPECT_FALSE(RegisterObject("reg.null", &first, ""));
    EXPECT_EQ(FetchObject("reg.null", ""), nullptr);
    EXPECT_TRUE(UnRegisterObject("reg.null", ""));
}

TEST(RegistryInstance, TypedLayerUsesTheLiteralKeyAndDestroysOnlyWhenAsked) {
    Probe::destroyed = 0;
    auto* probe = new Probe;
    ASSERT_TRUE(RegisterInstance(probe));
    EXPECT_EQ(FetchObject("class test::Probe", ""), probe);
    EXPECT_EQ(FetchInstance<Probe>(), probe);
    EXPECT_FALSE(RegisterInstance(probe));
    EXPECT_TRUE(UnRegisterInstance<Probe>(false));
    EXPECT_EQ(FetchInstance<Probe>(), nullptr);
    EXPECT_EQ(Probe::destroyed, 0);

    ASSERT_TRUE(RegisterInstance(probe));
    EXPECT_TRUE(UnRegisterInstance<Probe>(true));
    EXPECT_EQ(Probe::destroyed, 1);
    EXPECT_EQ(FetchInstance<Probe>(), nullptr);
    // Nothing registered: nothing destroyed, and the unregistration reports the absence.
    EXPECT_FALSE(UnRegisterInstance<Probe>(true));
    EXPECT_EQ(Probe::destroyed, 1);
}
