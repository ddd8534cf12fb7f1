#include "scenario/script.h"

#include <algorithm>
#include <array>

#include "scenario/expectation.h"
#include "scenario/matcher.h"

namespace zev::scenario {
namespace {

constexpr std::size_t controlParts = 2;   // form and control
constexpr std::size_t propertyParts = 3;  // form, control and property
constexpr std::int32_t largestCount = 1'000'000'000;

Action readClick(const JsonReader& value) { return Click{readName(value, controlParts)}; }
Action readFocus(const JsonReader& value) { return Focus{readName(value, controlParts)}; }
Action readClose(const JsonReader& value) { return Close{readName(value, 1)}; }
Action readDrive(const JsonReader& value) { return ChooseDrive{value.text()}; }
Action readFolder(const JsonReader& value) { return ChooseFolder{value.text()}; }

Action readSelect(const JsonReader& value) {
  const auto parts = value.elements(2);
  return Select{readName(parts[0], controlParts), parts[1].text()};
}

Action readType(const JsonReader& value) {
  const auto parts = value.elements(2);
  return Type{readName(parts[0], controlParts), parts[1].text()};
}

std::string readButton(const JsonReader& value) {
  std::string word = value.utf8();
  if (!answerNamed(word)) {
    value.fail("no answer \"" + word +
               "\"; there are ok, cancel, abort, retry, ignore, yes, no and {\"text\": ..}");
  }
  return word;
}

constexpr KeyRow<Answer> answerKeys[] = {{"text", into<&Answer::text>}};

Answer readAnswer(const JsonReader& value) {
  Answer answer;
  answer.path = value.path();
  if (value.isText()) {
    answer.button = readButton(value);
    return answer;
  }
  readObject(value, answerKeys, answer);
  if (!answer.text) value.fail("the answer has no text");
  return answer;
}

Action readAnswers(const JsonReader& value) {
  GiveAnswers all;
  for (const JsonReader& each : value.elements()) all.answers.push_back(readAnswer(each));
  return all;
}

std::int32_t readOrdinal(const JsonReader& value) {
  return static_cast<std::int32_t>(value.whole(1, largestCount));
}

AtSet readSetTrigger(const JsonReader& value) {
  const auto parts = value.elements(2);
  checkPropertyValue(parts[1]);
  Name property = readName(parts[0], propertyParts);
  if (property.parts.size() < 2) parts[0].fail("a control and its property are wanted");
  return {std::move(property), parts[1].json(), parts[0].path()};
}

constexpr KeyRow<At> triggerKeys[] = {
    {"yield", [](const JsonReader& value, At& at) { at.when = AtPass{readOrdinal(value)}; }},
    {"set", [](const JsonReader& value, At& at) { at.when = readSetTrigger(value); }},
    {"box", [](const JsonReader& value, At& at) { at.when = AtBox{readOrdinal(value)}; }},
};

void readTrigger(const JsonReader& value, At& at) {
  readObject(value, triggerKeys, at);
  if (value.json().size() != 1) value.fail("one of yield, set and box is wanted");
}

constexpr KeyRow<At> atKeys[] = {
    {"at", readTrigger},
    {"do", [](const JsonReader& value, At& at) { at.steps = readSteps(value); }},
};

At readAt(const JsonReader& step) {
  At at;
  readObject(step, atKeys, at);
  if (!step.json().contains("do")) step.fail("an \"at\" without its \"do\"");
  return at;
}

Action readChange(const JsonReader& value) { return Change{readMachine(value)}; }

Action readRestart(const JsonReader& value) {
  value.requireTrue();
  return Restart{};
}

Action readEndSession(const JsonReader& value) {
  value.requireTrue();
  return EndSession{};
}

constexpr KeyRow<Other> otherKeys[] = {
    {"writes",
     [](const JsonReader& value, Other& other) {
       const auto written = value.elements(2);
       other = {Other::Kind::Writes, written[0].text(), written[1].text()};
     }},
    {"deletes",
     [](const JsonReader& value, Other& other) {
       other = {Other::Kind::Deletes, value.text(), {}};
     }},
    {"holds",
     [](const JsonReader& value, Other& other) {
       other = {Other::Kind::Holds, value.text(), {}};
     }},
};

Action readOther(const JsonReader& value) {
  Other other;
  readObject(value, otherKeys, other);
  if (value.json().size() != 1) value.fail("one of writes, deletes and holds is wanted");
  return other;
}

Action readBeside(const JsonReader& value) { return Beside{readSteps(value)}; }

Action readExpect(const JsonReader& value) {
  Expect expect;
  for (const auto& [key, expected] : value.members()) {
    checkExpectation(key, expected);
    expect.expectations.push_back({key, expected.json(), expected.path()});
  }
  return expect;
}

Action readSet(const JsonReader& value) {
  Set set;
  for (const auto& [key, wanted] : value.members()) {
    if (!isPropertyKey(key)) wanted.fail("\"" + key + "\" is no global and no property");
    if (wanted.json().isStructured() || wanted.json().isNull() || wanted.json().isFraction()) {
      wanted.failWanted("a text, a whole number, or true or false");
    }
    checkPropertyValue(wanted);
    set.values.push_back({key, wanted.json(), wanted.path()});
  }
  return set;
}

struct Verb {
  std::string_view key;
  Action (*read)(const JsonReader& value);
};

// clang-format off
constexpr Verb verbs[] = {
    {"click", readClick},
    {"select", readSelect},
    {"type", readType},
    {"focus", readFocus},
    {"drive", readDrive},
    {"folder", readFolder},
    {"close", readClose},
    {"answer", readAnswers},
    {"change", readChange},
    {"restart", readRestart},
    {"endSession", readEndSession},
    {"other", readOther},
    {"beside", readBeside},
    {"expect", readExpect},
    {"set", readSet},
};
// clang-format on

[[noreturn]] void failUnknownVerb(const JsonReader& value, std::string_view key) {
  std::vector<std::string_view> known;
  for (const Verb& verb : verbs) known.push_back(verb.key);
  known.push_back("at");
  failUnknownKey(value, key, known);
}

const Verb* findVerb(std::string_view key) {
  const auto found = std::find_if(std::begin(verbs), std::end(verbs),
                                  [&](const Verb& each) { return each.key == key; });
  return found == std::end(verbs) ? nullptr : found;
}

Action readAction(const JsonReader& step) {
  if (!step.isObject()) step.failWanted("a step");
  if (step.json().contains("at") || step.json().contains("do")) {
    if (!step.json().contains("at")) step.fail("a \"do\" without its \"at\"");
    return readAt(step);
  }
  const auto members = step.members();
  if (members.empty()) step.fail("a step without a verb");
  for (const auto& [key, value] : members) {
    const Verb* verb = findVerb(key);
    if (verb == nullptr) failUnknownVerb(value, key);
    if (members.size() == 1) return verb->read(value);
  }
  step.fail("a step has one verb, not " + std::to_string(members.size()));
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }
bool beginsIdentifier(char letter) {
  return letter == '_' || (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
}

/// An index: digits in parentheses.
bool isIndex(std::string_view text) {
  return text.size() > 2 && text.front() == '(' && text.back() == ')' &&
         std::all_of(text.begin() + 1, text.end() - 1, isDigit);
}

bool isPartOfName(std::string_view part) {
  if (part.empty() || !beginsIdentifier(part.front())) return false;
  const auto end = std::find_if(part.begin(), part.end(), [](char letter) {
    return !beginsIdentifier(letter) && !isDigit(letter);
  });
  const std::string_view rest = part.substr(static_cast<std::size_t>(end - part.begin()));
  return rest.empty() || isIndex(rest);
}

}  // namespace

std::string Name::written() const {
  std::string whole;
  for (const std::string& part : parts) whole += (whole.empty() ? "" : ".") + part;
  return whole;
}

Name readName(const JsonReader& name, std::size_t mostParts) {
  const std::string written = name.utf8();
  auto parts = partsOfName(written);
  if (!parts || parts->size() > mostParts) {
    name.fail("\"" + written + "\" is no name such as " +
              (mostParts == 1   ? "Form1"
               : mostParts == 2 ? "Form1.Command2"
                                : "Form1.Label1.Caption"));
  }
  return {std::move(*parts)};
}

std::optional<std::vector<std::string>> partsOfName(std::string_view written) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start <= written.size();) {
    const std::size_t end = std::min(written.find('.', start), written.size());
    parts.emplace_back(written.substr(start, end - start));
    if (!isPartOfName(parts.back())) return std::nullopt;
    start = end + 1;
  }
  return parts;
}

bool preparesOnly(const Step& step) {
  return std::holds_alternative<GiveAnswers>(step.action) ||
         std::holds_alternative<At>(step.action);
}

Step readStep(const JsonReader& step) {
  Action action = readAction(step);
  const std::string verb = step.json().contains("at") ? "at" : step.json().items().front().name;
  return {step.json(), step.member(verb).path(), std::move(action)};
}

std::vector<Step> readSteps(const JsonReader& steps) {
  std::vector<Step> all;
  for (const JsonReader& each : steps.elements()) all.push_back(readStep(each));
  return all;
}

namespace {

/// In the order in which a message lists them.
constexpr BoxAnswer buttonOrder[] = {BoxAnswer::OK,    BoxAnswer::Yes,   BoxAnswer::No,
                                     BoxAnswer::Abort, BoxAnswer::Retry, BoxAnswer::Ignore,
                                     BoxAnswer::Cancel};

/// The words of the buttons, always in the same order.
std::string listed(const std::vector<BoxAnswer>& buttons) {
  std::string all;
  for (const BoxAnswer each : buttonOrder) {
    if (std::find(buttons.begin(), buttons.end(), each) == buttons.end()) continue;
    all += (all.empty() ? "" : ", ") + std::string(answerName(each));
  }
  return all;
}

}  // namespace

BoxAnswer pressedOf(const Answer& answer, const std::vector<BoxAnswer>& buttons, TextView boxText) {
  if (answer.text) {
    throw ScenarioError(answer.path, "a text for the message box \"" + toUtf8(boxText) + "\"");
  }
  const BoxAnswer button = answerNamed(answer.button).value();
  if (std::find(buttons.begin(), buttons.end(), button) != buttons.end()) return button;
  if (button == BoxAnswer::Cancel && buttons.size() == 1) return BoxAnswer::OK;
  throw ScenarioError(answer.path, "the box \"" + toUtf8(boxText) + "\" has no button \"" +
                                       answer.button + "\"; it has " + listed(buttons));
}

Text entered(const Answer& answer, TextView initial) {
  if (answer.text) return *answer.text;
  if (answer.button == "ok") return Text(initial);
  if (answer.button == "cancel") return {};
  throw ScenarioError(answer.path, "an input box has no button \"" + answer.button +
                                       "\"; it takes a text, ok or cancel");
}

}  // namespace zev::scenario
