#include "cli/session/consumer.h"

#include <memory>

#include "seams/member_errors.h"

namespace parvex::cli {
namespace {

constexpr const char* kName = "Parvex.LegacyORLAPull";

class Consumer : public automation::Object {
 public:
  std::string Name() const override { return kName; }
  automation::Value Get(std::string_view member) override { Refuse(member); }
  void Put(std::string_view member, const automation::Value&) override { Refuse(member); }
  automation::Value Call(std::string_view member, std::span<automation::Argument>) override { Refuse(member); }

 private:
  [[noreturn]] static void Refuse(std::string_view member) { throw automation::NoSuchMember(kName, member); }
};

}  // namespace

automation::ObjectRef MakeConsumer() { return std::make_shared<Consumer>(); }

}  // namespace parvex::cli
