#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "seams/automation.h"

namespace parvex::test {

/// A late-bound value as tests write it: a text in double quotes, a number, True or False, Nothing for the empty
/// reference, Empty for no value, an object's name, {key: item, ...} for a collection; "&" before what is passed by
/// reference.
std::string ToLine(const automation::Value& value);

/// Late-bound objects that a test scripts. A member is named by its path: the object's name, a dot, the member. An
/// object that is created has its programmatic identifier as its name, one that a member gives has the member's path.
///
/// A get of a member without an answer is an error (438, the object has no such member); a put or a call without one is
/// merely recorded. Objects must not outlive the scripter.
class FakeAutomation : public automation::Automation {
 public:
  using Action = std::function<automation::Value(std::span<automation::Argument>)>;

  /// What was done, in order, a line each:
  ///   create CLASS
  ///   put PATH = VALUE
  ///   get PATH -> VALUE
  ///   call PATH(VALUE, VALUE) -> VALUE    the arguments as they were passed; no arrow where the call gives no value
  ///   release NAME                        the last reference to an object was dropped
  /// What fails ends in " failed" instead of an arrow and a value.
  std::vector<std::string> lines;
  /// Objects that somebody holds.
  int living = 0;

  /// What fails: a member's path, or the programmatic identifier whose creation fails.
  std::string failAt;
  /// The number, from 1, of the access (creation, get, put or call) that fails; 0 for none.
  std::size_t failAtAccess = 0;
  /// The number that they fail with.
  std::uint32_t failNumber = 0x80004005u;
  /// Runs before each access, with its line as far as it is known.
  std::function<void(const std::string& line)> onAccess;

  /// Makes a class creatable; one that nobody offers cannot be created (429).
  void Offer(const std::string& programmaticId);
  /// What a member gives, one value an access, the last one from then on.
  void Answer(const std::string& path, std::vector<automation::Value> values);
  /// The member gives an object, a new one each time.
  void AnswerObject(const std::string& path);
  /// The member does this; a put passes its value as the one argument.
  void Do(const std::string& path, Action action);

  automation::ObjectRef Create(std::string_view programmaticId) override;
  /// An object of that name, outside the table of classes, whose making is not recorded.
  automation::ObjectRef NewObject(const std::string& name);

 private:
  class ScriptedObject;

  /// Records the access and carries it out; `needsAnswer` makes a member without an action an error.
  automation::Value Access(const std::string& line, const std::string& path, std::span<automation::Argument> arguments,
                           bool needsAnswer);
  automation::Value Perform(const std::string& path, std::span<automation::Argument> arguments, bool needsAnswer);

  std::map<std::string, Action, std::less<>> actions_;
  std::vector<std::string> offered_;
  std::size_t accesses_ = 0;
};

}  // namespace parvex::test
