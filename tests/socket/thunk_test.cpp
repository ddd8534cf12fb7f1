#include "socket/thunk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/message_queue.h"
#include "runtime/error.h"
#include "simulated/network/simulated_kernel.h"
#include "socket/targets.h"
#include "socket/thunk_picture.h"
#include "socket/watched_services.h"
#include "support/raised.h"

namespace zev::socket_bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Offsets = std::vector<std::size_t>;

// ---- the code

TEST(ThunkCode, HasTheBytesOfTheTranscription) {
  const ThunkPicture picture;
  const auto bytes = thunkBytes();
  ASSERT_EQ(picture.size(), 182u);
  ASSERT_EQ(bytes.size(), 182u);
  EXPECT_THAT(ThunkPicture::differences(picture.bytes(), bytes.data()), IsEmpty());
}

TEST(ThunkCode, HasItsFieldsWhereTheTranscriptionHasThem) {
  const ThunkPicture picture;
  Offsets offsets;
  for (const auto& field : picture.fields()) offsets.push_back(field.offset);
  EXPECT_THAT(offsets, ElementsAre(thunk_field::ebMode, thunk_field::restoreProcedure,
                                   thunk_field::setWindowLong, thunk_field::forwardProcedure,
                                   thunk_field::callWindowProc, thunk_field::resolveCount,
                                   thunk_field::resolveHandles, thunk_field::resolveObjects,
                                   thunk_field::socketCount, thunk_field::socketHandles,
                                   thunk_field::socketObjects));
  EXPECT_EQ(thunk_field::guardJump, ThunkPicture::guardJump);
}

TEST(ThunkCode, HasAFieldForEveryGapOfTheTranscriptionAndNoOther) {
  const ThunkPicture picture;
  std::vector<bool> gap(picture.size());
  for (const auto& field : picture.fields()) {
    for (std::size_t i = 0; i < ThunkPicture::fieldSize; ++i) gap[field.offset + i] = true;
  }
  for (std::size_t i = 0; i < picture.size(); ++i) {
    EXPECT_EQ(picture.bytes()[i] == ThunkPicture::anyByte, gap[i]) << i;
  }
}

TEST(ThunkCode, HasTheGuardJumpAsItsTwoBytes) {
  const auto bytes = thunkBytes();
  EXPECT_EQ(bytes[thunk_field::guardJump], 0xEB);
  EXPECT_EQ(bytes[thunk_field::guardJump + 1], 0x0E);
}

// ---- the block

std::int32_t noMode() { return 1; }
std::int32_t anotherMode() { return 1; }

std::uintptr_t addressOf(std::int32_t (*function)()) {
  return reinterpret_cast<std::uintptr_t>(function);
}

class ThunkTest : public testing::Test {
 protected:
  ThunkTest() {
    trace.setReader([this](const Text& line) { lines.push_back(toUtf8(line)); });
    queue.standIn(previous, &previousRoutine);
    queue.SetWindowLongA(window, windowProcedureIndex, previous);
  }

  std::uintptr_t address() const { return reinterpret_cast<std::uintptr_t>(thunk.ThunkBlock()); }
  FieldValues builtValues() {
    return {{"SetWindowLongA", kernel.ProcAddress("user32", "SetWindowLongA")},
            {"CallWindowProcA", kernel.ProcAddress("user32", "CallWindowProcA")}};
  }
  FieldValues subclassedValues() {
    FieldValues values = builtValues();
    values["previous_procedure"] = previous;
    return values;
  }
  static void addTable(FieldValues& values, const std::string& name, const HandleTable& table) {
    values[name + "_count"] = static_cast<std::uintptr_t>(table.count());
    values[name + "_handles"] = reinterpret_cast<std::uintptr_t>(table.handles().data());
    values[name + "_objects"] = reinterpret_cast<std::uintptr_t>(table.objects().data());
  }
  /// With both tables patched.
  FieldValues wholeValues() {
    FieldValues values = subclassedValues();
    addTable(values, "resolve", thunk.resolveTable());
    addTable(values, "socket", thunk.socketTable());
    return values;
  }
  Offsets differences(const FieldValues& values, bool guarded = false) {
    return ThunkPicture::differences(picture.filled(address(), values, guarded),
                                     thunk.ThunkBlock());
  }
  std::uint32_t field(std::size_t offset) const {
    std::uint32_t value;
    std::memcpy(&value, thunk.ThunkBlock() + offset, sizeof value);
    return value;
  }
  /// Spoils a field, so that a test can see whether it is written again.
  void spoil(std::size_t offset) {
    std::memset(const_cast<std::uint8_t*>(thunk.ThunkBlock()) + offset, 0xA5, 4);
  }
  static constexpr std::uint32_t spoiled = 0xA5A5A5A5;
  void buildAndSubclass() {
    thunk.BuildThunk(false);
    ASSERT_TRUE(thunk.SubclassMessageWindow(window));
  }

  static constexpr std::uintptr_t previous = 0x401234;

  const ThunkPicture picture;
  MessageQueue queue;
  simulated::SimulatedKernel simulatedKernel;
  Calls calls;
  WatchedWindows windows{queue, calls};
  WatchedKernel kernel{simulatedKernel, calls};
  Instances instances{[](std::exception_ptr) {}};
  std::vector<std::string> lines;
  Trace trace;
  RecordingRoutine previousRoutine;
  const WindowHandle window = queue.CreateWindowExA(u"STATIC", u"TEST");
  Thunk thunk{kernel, windows, instances, trace};
};

TEST_F(ThunkTest, BuildsTheBlockStepByStep) {
  thunk.BuildThunk(false);
  ASSERT_NE(thunk.ThunkBlock(), nullptr);
  EXPECT_THAT(calls.lines(), ElementsAre("VirtualAlloc 182 4096 64", "VirtualLock 182",
                                         "GetProcAddress user32!SetWindowLongA",
                                         "GetProcAddress user32!CallWindowProcA"));
  EXPECT_THAT(differences(builtValues()), IsEmpty());
  EXPECT_EQ(thunk.SubclassedWindow(), 0u);
  EXPECT_EQ(simulatedKernel.pages(), 1u);
}

TEST_F(ThunkTest, BuildsTheGuardInADesignEnvironment) {
  kernel.setProcAddress("vba6", "EbMode", addressOf(&noMode));
  thunk.BuildThunk(true);
  EXPECT_THAT(calls.linesOf({"GetProcAddress"}),
              ElementsAre("GetProcAddress vba6!EbMode", "GetProcAddress user32!SetWindowLongA",
                          "GetProcAddress user32!CallWindowProcA"));
  FieldValues values = builtValues();
  values["EbMode"] = addressOf(&noMode);
  EXPECT_THAT(differences(values, true), IsEmpty());
}

TEST_F(ThunkTest, AsksTheOlderLibraryIfTheNewerHasNothing) {
  kernel.setProcAddress("vba5", "EbMode", addressOf(&anotherMode));
  thunk.BuildThunk(true);
  EXPECT_THAT(
      calls.linesOf({"GetProcAddress"}),
      ElementsAre("GetProcAddress vba6!EbMode", "GetProcAddress vba5!EbMode",
                  "GetProcAddress user32!SetWindowLongA", "GetProcAddress user32!CallWindowProcA"));
  FieldValues values = builtValues();
  values["EbMode"] = addressOf(&anotherMode);
  EXPECT_THAT(differences(values, true), IsEmpty());
}

TEST_F(ThunkTest, IsNoDesignEnvironment) { EXPECT_FALSE(Thunk::InDesignEnvironment()); }

TEST_F(ThunkTest, NeedsMemory) {
  calls.fail("VirtualAlloc");
  try {
    thunk.BuildThunk(false);
    FAIL() << "nothing was raised";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), 7);
    EXPECT_EQ(error.description(), u"Out of memory");
  }
  EXPECT_EQ(thunk.ThunkBlock(), nullptr);
  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(ThunkTest, DoesWithoutBeingLocked) {
  calls.fail("VirtualLock");
  thunk.BuildThunk(false);
  EXPECT_THAT(differences(builtValues()), IsEmpty());
}

TEST_F(ThunkTest, TellsOfItsMemory) {
  thunk.BuildThunk(false);
  const std::string place = std::to_string(address());
  thunk.ReleaseThunk();
  EXPECT_THAT(lines, ElementsAre("OK Subclass memory allocated at: " + place,
                                 "OK Freed subclass memory at: " + place));
}

// ---- the window

TEST_F(ThunkTest, Subclasses) {
  thunk.BuildThunk(false);
  calls.clearLines();
  EXPECT_TRUE(thunk.SubclassMessageWindow(window));
  const std::string handle = std::to_string(window);
  EXPECT_THAT(calls.lines(),
              ElementsAre("GetWindowLongA " + handle + " -4",
                          "SetWindowLongA " + handle + " -4 " + std::to_string(address())));
  EXPECT_THAT(differences(subclassedValues()), IsEmpty());
  EXPECT_EQ(thunk.SubclassedWindow(), window);
  EXPECT_EQ(thunk.PreviousProcedure(), 0u);
  EXPECT_EQ(queue.GetWindowLongA(window, windowProcedureIndex), address());
}

TEST_F(ThunkTest, SubclassesOneWindowAtATime) {
  buildAndSubclass();
  const WindowHandle another = queue.CreateWindowExA(u"STATIC", u"");
  calls.clearLines();
  EXPECT_FALSE(thunk.SubclassMessageWindow(another));
  EXPECT_FALSE(thunk.SubclassMessageWindow(window));
  EXPECT_THAT(calls.lines(), IsEmpty());
  EXPECT_EQ(thunk.SubclassedWindow(), window);
  EXPECT_THAT(differences(subclassedValues()), IsEmpty());
}

TEST_F(ThunkTest, KeepsTheWindowThatCouldNotBeSubclassed) {
  thunk.BuildThunk(false);
  calls.fail("SetWindowLongA");
  EXPECT_FALSE(thunk.SubclassMessageWindow(window));
  EXPECT_EQ(thunk.SubclassedWindow(), window);
  EXPECT_EQ(thunk.PreviousProcedure(), 0u);
  EXPECT_THAT(differences(subclassedValues()), IsEmpty());
  EXPECT_EQ(queue.GetWindowLongA(window, windowProcedureIndex), previous);
}

TEST_F(ThunkTest, SubclassesAWindowWhoseProcedureNobodyTells) {
  thunk.BuildThunk(false);
  calls.fail("GetWindowLongA");
  EXPECT_TRUE(thunk.SubclassMessageWindow(window));
  FieldValues values = builtValues();
  values["previous_procedure"] = 0;
  EXPECT_THAT(differences(values), IsEmpty());
}

TEST_F(ThunkTest, UnsubclassesWithoutPuttingTheProcedureBack) {
  buildAndSubclass();
  thunk.AddSocketEntry(97, 1);
  thunk.AddResolveEntry(3, 1);
  FieldValues values = wholeValues();
  calls.clearLines();
  EXPECT_TRUE(thunk.UnsubclassMessageWindow());
  EXPECT_THAT(calls.lines(), ElementsAre("SetWindowLongA " + std::to_string(window) + " -4 0"));
  EXPECT_EQ(thunk.SubclassedWindow(), 0u);
  EXPECT_EQ(thunk.resolveTable().count(), 0);
  EXPECT_EQ(thunk.socketTable().count(), 0);
  values["resolve_count"] = values["socket_count"] = 0;
  EXPECT_THAT(differences(values), IsEmpty());
  EXPECT_EQ(queue.GetWindowLongA(window, windowProcedureIndex), MessageQueue::defaultProcedure);
}

TEST_F(ThunkTest, UnsubclassesNothingWithoutAWindow) {
  thunk.BuildThunk(false);
  EXPECT_FALSE(thunk.UnsubclassMessageWindow());
  ASSERT_TRUE(thunk.SubclassMessageWindow(window));
  EXPECT_TRUE(thunk.UnsubclassMessageWindow());
  calls.clearLines();
  EXPECT_FALSE(thunk.UnsubclassMessageWindow());
  EXPECT_THAT(calls.lines(), IsEmpty());
}

TEST_F(ThunkTest, SubclassesAnewWithTheTablesFromCountZero) {
  buildAndSubclass();
  thunk.AddSocketEntry(97, 1);
  thunk.AddSocketEntry(98, 2);
  thunk.UnsubclassMessageWindow();
  queue.SetWindowLongA(window, windowProcedureIndex, previous);
  EXPECT_TRUE(thunk.SubclassMessageWindow(window));
  EXPECT_EQ(thunk.PreviousProcedure(), 0u);
  EXPECT_EQ(field(thunk_field::socketCount), 0u);
  thunk.AddSocketEntry(99, 3);
  EXPECT_EQ(thunk.socketTable().count(), 1);
  EXPECT_THAT(thunk.socketTable().handles(), ElementsAre(99));
  FieldValues values = subclassedValues();
  addTable(values, "socket", thunk.socketTable());
  EXPECT_THAT(differences(values), IsEmpty());
}

TEST_F(ThunkTest, ReleasesTheBlockBehindTheWindow) {
  buildAndSubclass();
  for (std::int32_t handle = 1; handle <= 10; ++handle) {
    thunk.AddSocketEntry(handle, handle);
    thunk.AddResolveEntry(handle, handle);
  }
  const std::uintptr_t was = address();
  calls.clearLines();
  thunk.ReleaseThunk();
  EXPECT_THAT(calls.lines(), ElementsAre("SetWindowLongA " + std::to_string(window) + " -4 0",
                                         "VirtualFree 0 32768"));
  EXPECT_EQ(thunk.ThunkBlock(), nullptr);
  EXPECT_EQ(simulatedKernel.pages(), 0u);
  for (const HandleTable* table : {&thunk.resolveTable(), &thunk.socketTable()}) {
    EXPECT_EQ(table->count(), 0);
    EXPECT_EQ(table->handles().size(), 1u);
    EXPECT_EQ(table->objects().size(), 1u);
  }
  previousRoutine.answer = 5;
  EXPECT_EQ(queue.CallWindowProcA(was, {window, 1, 0, 0}), 0);
}

TEST_F(ThunkTest, ReleasesEntriesThatCameWithoutAWindow) {
  thunk.BuildThunk(false);
  for (std::int32_t handle = 1; handle <= 3; ++handle) thunk.AddSocketEntry(handle, handle);
  thunk.ReleaseThunk();
  buildAndSubclass();
  EXPECT_EQ(thunk.socketTable().count(), 0);
  thunk.AddSocketEntry(97, 1);
  thunk.AddSocketEntry(98, 2);
  EXPECT_THAT(thunk.socketTable().handles(), ElementsAre(97, 98));
  FieldValues values = subclassedValues();
  addTable(values, "socket", thunk.socketTable());
  EXPECT_THAT(differences(values), IsEmpty());
}

TEST_F(ThunkTest, ForgetsEndedInstancesWithTheBlock) {
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = instances.add(target);
  thunk.BuildThunk(false);
  thunk.AddSocketEntry(97, pointer);
  instances.ended(pointer, true);
  thunk.ReleaseThunk();
  EXPECT_EQ(instances.entries(), 0u);
}

TEST_F(ThunkTest, EndsWithItsObject) {
  {
    Thunk another(kernel, windows, instances, trace);
    another.BuildThunk(false);
    EXPECT_EQ(simulatedKernel.pages(), 1u);
  }
  EXPECT_EQ(simulatedKernel.pages(), 0u);
}

// ---- the tables

TEST_F(ThunkTest, PatchesAfterEachEntryThatGrewATable) {
  buildAndSubclass();
  thunk.AddResolveEntry(5, 55);
  FieldValues values = subclassedValues();
  addTable(values, "resolve", thunk.resolveTable());
  ASSERT_THAT(differences(values), IsEmpty());
  for (std::int32_t i = 1; i <= 1000; ++i) {
    thunk.AddSocketEntry(96 + i, i);
    if (i % 3 == 0) thunk.AddResolveEntry(i + 5, i);
    ASSERT_THAT(differences(wholeValues()), IsEmpty()) << i;
  }
  EXPECT_EQ(field(thunk_field::socketCount), 1000u);
  EXPECT_EQ(field(thunk_field::resolveCount), 334u);
}

TEST_F(ThunkTest, PatchesTheTableThatGrewAlone) {
  buildAndSubclass();
  thunk.AddResolveEntry(5, 55);
  thunk.AddSocketEntry(97, 1);
  spoil(thunk_field::resolveCount);
  thunk.AddSocketEntry(98, 2);
  EXPECT_EQ(field(thunk_field::resolveCount), spoiled);
  spoil(thunk_field::socketCount);
  thunk.AddResolveEntry(6, 66);
  EXPECT_EQ(field(thunk_field::resolveCount), 2u);
  EXPECT_EQ(field(thunk_field::socketCount), spoiled);
}

TEST_F(ThunkTest, PatchesNothingForAFreeSlotOrAKnownHandle) {
  buildAndSubclass();
  thunk.AddSocketEntry(97, 1);
  thunk.AddSocketEntry(98, 2);
  thunk.DeleteSocketEntry(97);
  spoil(thunk_field::socketCount);
  thunk.AddSocketEntry(99, 3);
  thunk.AddSocketEntry(98, 4);
  EXPECT_EQ(field(thunk_field::socketCount), spoiled);
  EXPECT_THAT(thunk.socketTable().handles(), ElementsAre(99, 98));
  EXPECT_THAT(thunk.socketTable().objects(), ElementsAre(3, 2));
}

TEST_F(ThunkTest, PatchesNothingWhenEntriesGo) {
  buildAndSubclass();
  thunk.AddSocketEntry(97, 1);
  thunk.AddResolveEntry(5, 1);
  const FieldValues values = wholeValues();
  thunk.DeleteSocketEntry(97);
  thunk.DeleteResolveEntry(5);
  EXPECT_EQ(thunk.socketTable().count(), 1);
  EXPECT_EQ(thunk.resolveTable().count(), 1);
  EXPECT_THAT(differences(values), IsEmpty());
}

TEST_F(ThunkTest, TakesEntriesBeforeThereIsABlock) {
  thunk.AddSocketEntry(97, 1);
  EXPECT_EQ(thunk.socketTable().find(97), 1);
}

TEST_F(ThunkTest, TellsOfAHandleThatItKnows) {
  buildAndSubclass();
  lines.clear();
  thunk.AddSocketEntry(97, 1);
  thunk.AddResolveEntry(97, 1);
  EXPECT_THAT(lines, IsEmpty());
  thunk.AddSocketEntry(97, 2);
  EXPECT_THAT(lines, ElementsAre("WARNING: Async already registered!"));
  thunk.AddResolveEntry(97, 2);
  EXPECT_EQ(lines.size(), 2u);
}

TEST_F(ThunkTest, ReplacesInTheSocketTable) {
  buildAndSubclass();
  thunk.AddSocketEntry(97, 1);
  thunk.AddResolveEntry(97, 2);
  thunk.ReplaceSocketEntry(97, 9);
  EXPECT_EQ(thunk.socketTable().find(97), 9);
  EXPECT_EQ(thunk.resolveTable().find(97), 2);
}

/// The check of the bytes itself: whichever byte of the block is another one, it tells that one.
TEST_F(ThunkTest, EachByteCounts) {
  kernel.setProcAddress("vba6", "EbMode", addressOf(&noMode));
  thunk.BuildThunk(true);
  thunk.SubclassMessageWindow(window);
  thunk.AddSocketEntry(97, 1);
  thunk.AddResolveEntry(3, 1);
  FieldValues values = wholeValues();
  values["EbMode"] = addressOf(&noMode);
  const std::vector<int> expected = picture.filled(address(), values, true);
  std::vector<std::uint8_t> copy(thunk.ThunkBlock(), thunk.ThunkBlock() + thunkSize);
  ASSERT_THAT(ThunkPicture::differences(expected, copy.data()), IsEmpty());
  for (std::size_t offset = 0; offset < thunkSize; ++offset) {
    for (const int flip : {0x01, 0x80, 0xFF}) {
      const std::uint8_t right = copy[offset];
      copy[offset] = static_cast<std::uint8_t>(right ^ flip);
      EXPECT_THAT(ThunkPicture::differences(expected, copy.data()), ElementsAre(offset));
      copy[offset] = right;
    }
  }
}

}  // namespace
}  // namespace zev::socket_bench
