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

TEST(ObjectRegistry, RegistersFetchesAndForgets) {
    int object = 0;
    EXPECT_TRUE(RegisterObject("reg.basic", &object, "g"));
    EXPECT_EQ(FetchObject("reg.basic", "g"), &object);
    EXPECT_EQ(FetchObject("reg.basic", ""), nullptr);
    EXPECT_TRUE(UnRegisterObject("reg.basic", "g"));
    EXPECT_EQ(FetchObject("reg.basic", "g"), nullptr);
    EXPECT_FALSE(UnRegisterObject("reg.basic", "g"));
}

TEST(ObjectRegistry, SecondRegistrationIsRefusedAndKeepsTheFirstPointer) {
    int first = 1, second = 2;
    ASSERT_TRUE(RegisterObject("reg.twice", &first, ""));
    EXPECT_FALSE(RegisterObject("reg.twice", &second, ""));
    EXPECT_EQ(FetchObject("reg.twice", ""), &first);
    UnRegisterObject("reg.twice", "");
}

TEST(ObjectRegistry, KeyIsNameAndGroupConcatenated) {
    int a = 0, b = 0;
    ASSERT_TRUE(RegisterObject("reg.ab", &a, "c"));
    EXPECT_FALSE(RegisterObject("reg.a", &b, "bc"));
    EXPECT_EQ(FetchObject("reg.a", "bc"), &a);
    EXPECT_TRUE(UnRegisterObject("reg.a", "bc"));
    EXPECT_EQ(FetchObject("reg.ab", "c"), nullptr);
}

TEST(ObjectRegistry, UnknownNamesAreAbsent) {
    EXPECT_EQ(FetchObject("reg.never", ""), nullptr);
    EXPECT_FALSE(UnRegisterObject("reg.never", ""));
}

TEST(ObjectRegistry, NullObjectIsStoredAndOccupiesItsKey) {
    ASSERT_TRUE(RegisterObject("reg.null", nullptr, ""));
    int object = 0;
    EXPECT_FALSE(RegisterObject("reg.null", &object, ""));
    EXPECT_EQ(FetchObject("reg.null", ""), nullptr);
    EXPECT_TRUE(UnRegisterObject("reg.null", ""));
}

TEST(RegistryInstance, TypedLayerUsesTheLiteralKeyAndEmptyGroup) {
    Probe probe;
    ASSERT_TRUE(RegisterInstance(&probe));
    EXPECT_EQ(FetchObject("class test::Probe", ""), &probe);
    EXPECT_EQ(FetchInstance<Probe>(), &probe);
    EXPECT_FALSE(RegisterInstance(&probe));
    EXPECT_TRUE(UnRegisterInstance<Probe>(false));
    EXPECT_EQ(FetchInstance<Probe>(), nullptr);
}

TEST(RegistryInstance, UnregisterDestroysOnlyWhenAsked) {
    Probe::destroyed = 0;
    auto* kept = new Probe;
    ASSERT_TRUE(RegisterInstance(kept));
    EXPECT_TRUE(UnRegisterInstance<Probe>(false));
    EXPECT_EQ(Probe::destroyed, 0);

    ASSERT_TRUE(RegisterInstance(kept));
    EXPECT_TRUE(UnRegisterInstance<Probe>(true));
    EXPECT_EQ(Probe::destroyed, 1);
    EXPECT_EQ(FetchInstance<Probe>(), nullptr);

    // Nothing registered: nothing destroyed, and the unregistration reports the absence.
    EXPECT_FALSE(UnRegisterInstance<Probe>(true));
    EXPECT_EQ(Probe::destroyed, 1);
}
