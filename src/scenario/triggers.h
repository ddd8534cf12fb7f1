#pragma once

#include <deque>
#include <list>
#include <vector>

#include "runtime/form.h"
#include "scenario/script.h"

namespace zev::scenario {

/// What waits for its moment: the `at` steps of a script. Steps are borrowed from the script, which
/// outlives this.
class Triggers {
 public:
  /// Checks that a property that an `at` waits for is one of a form or of a control on it. One that
  /// nobody has would be waited for in vain: a ScenarioError.
  static void requireProperty(const At& at, const std::vector<Form*>& forms);
  /// The same of all that were armed before there were forms.
  void requireProperties(const std::vector<Form*>& forms) const;
  /// Arms an `at`; it counts from here and fires once.
  void arm(const At& at);

  /// A pass of the message loop begins: counts it, and makes due what it releases.
  void passBegins();
  /// What a written property has released becomes due without waiting for a pass: the program is at
  /// rest.
  void rest() { release(); }
  /// A property took a value. `form` is null for a component of no known form.
  void written(const Form* form, const PropertyBase& property);
  /// A box opens: the steps to be done before it is answered.
  std::vector<const Step*> boxOpens();

  /// The next step that is due; null if there is none.
  const Step* takeDue();
  /// True if some `at` waits for a property, so that writes need telling.
  bool watchesProperties() const { return !sets_.empty(); }

 private:
  struct Countdown {
    std::int32_t left;
    const At* at;
  };
  static std::vector<const At*> countDown(std::list<Countdown>& all);
  void release();
  void makeDue(const At& at);

  std::list<Countdown> passes_;
  std::list<Countdown> boxes_;
  std::list<const At*> sets_;
  std::vector<const At*> released_;  ///< by a property, for the next pass
  std::deque<const Step*> due_;
};

}  // namespace zev::scenario
