#include "runtime/property.h"

#include <gtest/gtest.h>

#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;

struct Thing : Component {
  Thing() : Component(u"Thing") {}
  Property<Text> Caption{*this, "Caption", u"design"};
  Property<bool> Visible{*this, "Visible", true};
  Property<std::int32_t> Width{*this, "Width", 7};
};

struct Watcher final : FormObserver {
  std::vector<std::string> log;
  void propertyWritten(PropertyBase& property) override { log.emplace_back(property.name()); }
  void refreshed(Component& component) override {
    log.push_back("refreshed " + toUtf8(component.name()));
  }
  void focusGiven(Control&) override {}
};

TEST(Property, TellsTheObserverOfEveryWrite) {
  Thing thing;
  Watcher watcher;
  thing.Caption = u"unseen";
  thing.observe(&watcher);
  thing.Caption = u"a";
  thing.Caption = u"a";
  thing.property("Width").write(PropertyValue(3));
  thing.Refresh();
  thing.observe(nullptr);
  thing.Caption = u"unseen";
  thing.Refresh();
  EXPECT_EQ(watcher.log,
            (std::vector<std::string>{"Caption", "Caption", "Width", "refreshed Thing"}));
  EXPECT_EQ(thing.Width, 3);
}

TEST(Property, FollowsTheScreenUnseen) {
  Thing thing;
  Watcher watcher;
  thing.observe(&watcher);
  thing.Visible.follow(false);
  thing.Caption.design(u"new");
  EXPECT_FALSE(thing.Visible);
  EXPECT_EQ(thing.Caption.get(), u"new");
  EXPECT_TRUE(watcher.log.empty());
}

TEST(Property, GoesBackToItsDesignUnseen) {
  Thing thing;
  Watcher watcher;
  thing.Caption = u"a";
  thing.Visible.follow(false);
  thing.observe(&watcher);
  for (PropertyBase* each : thing.properties()) each->restore();
  EXPECT_EQ(thing.Caption.get(), u"design");
  EXPECT_TRUE(thing.Visible);
  EXPECT_TRUE(watcher.log.empty());
}

TEST(Property, IsReachedByNameInAnyCase) {
  Thing thing;
  EXPECT_EQ(&thing.property("CAPTION"), &thing.Caption);
  EXPECT_EQ(thing.findProperty("visible"), &thing.Visible);
  EXPECT_EQ(thing.findProperty("Tag"), nullptr);
  EXPECT_EQ(raisedBy([&] { thing.property("Tag"); }), 438);
  EXPECT_EQ(std::get<std::int32_t>(thing.property("width").value()), 7);
  EXPECT_EQ(&thing.property("width").owner(), &thing);
}

TEST(Property, StandsInTheOrderOfDeclaration) {
  Thing thing;
  std::vector<std::string_view> names;
  for (const PropertyBase* each : thing.properties()) names.push_back(each->name());
  EXPECT_EQ(names, (std::vector<std::string_view>{"Caption", "Visible", "Width"}));
}

TEST(Property, RefusesAValueOfAnotherType) {
  Thing thing;
  EXPECT_EQ(raisedBy([&] { thing.property("Caption").write(PropertyValue(1)); }), 13);
  EXPECT_EQ(raisedBy([&] { thing.property("Width").write(PropertyValue(Text(u"1"))); }), 13);
  EXPECT_EQ(raisedBy([&] { thing.property("Visible").write(PropertyValue(0)); }), 13);
  EXPECT_EQ(thing.Caption.get(), u"design");
}

}  // namespace
}  // namespace zev
