#include "formats/jet/statement.h"

#include <algorithm>

#include "formats/jet/engine_error.h"
#include "formats/text/text.h"

namespace parvex::jet {

namespace {

class StatementReader {
 public:
  explicit StatementReader(std::string_view sql) : sql_(sql), rest_(sql) { SkipBlanks(); }

  bool AtEnd() const { return rest_.empty(); }

  /// Takes a sign when it is next.
  bool Skip(char sign) {
    if (rest_.empty() || rest_.front() != sign) return false;
    rest_.remove_prefix(1);
    SkipBlanks();
    return true;
  }
  void Expect(char sign) {
    if (!Skip(sign)) Refuse();
  }
  void ExpectKeyword(std::string_view keyword) {
    if (!EqualIgnoringCase(TakeWord(), keyword)) Refuse();
  }

  void ExpectEnd() const {
    if (!AtEnd()) Refuse();
  }

  std::string TakeName() {
    if (rest_.starts_with('[')) return TakeUntil(']');
    return std::string(TakeWord());
  }

  std::string TakeText() {
    if (!rest_.starts_with('\'') && !rest_.starts_with('"')) Refuse();
    const char quote = rest_.front();
    std::string text = TakeUntil(quote);
    while (!blanksSkipped_ && rest_.starts_with(quote)) text += quote + TakeUntil(quote);
    return text;
  }

 private:
  [[noreturn]] void Refuse() const {
    Fail(EngineError::SyntaxError, "syntax error in the statement: " + std::string(sql_));
  }

  void SkipBlanks() {
    const std::size_t next = std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size());
    blanksSkipped_ = next > 0;
    rest_.remove_prefix(next);
  }

  std::string_view TakeWord() {
    constexpr std::string_view kNotInWords = " \t\r\n\"'`[]()*=<>+-/,;.!&";
    const std::size_t length = std::min(rest_.find_first_of(kNotInWords), rest_.size());
    if (length == 0) Refuse();
    const std::string_view word = rest_.substr(0, length);
    rest_.remove_prefix(length);
    SkipBlanks();
    return word;
  }

  /// What stands between the sign that is next and `end`.
  std::string TakeUntil(char end) {
    const std::size_t at = rest_.find(end, 1);
    if (at == std::string_view::npos) Refuse();
    std::string text(rest_.substr(1, at - 1));
    rest_.remove_prefix(at + 1);
    SkipBlanks();
    return text;
  }

  std::string_view sql_;
  std::string_view rest_;
  bool blanksSkipped_ = false;  ///< between what was taken last and what is next
};

}  // namespace

Statement ParseStatement(std::string_view sql) {
  StatementReader reader(sql);
  Statement statement;
  reader.ExpectKeyword("SELECT");
  reader.Expect('*');
  reader.ExpectKeyword("FROM");
  statement.table = reader.TakeName();
  const char* joining = "WHERE";
  while (!reader.AtEnd() && !reader.Skip(';')) {
    reader.ExpectKeyword(joining);
    joining = "AND";
    Statement::Condition condition;
    condition.column = reader.TakeName();
    reader.Expect('=');
    condition.text = reader.TakeText();
    statement.conditions.push_back(std::move(condition));
  }
  reader.ExpectEnd();
  return statement;
}

}  // namespace parvex::jet
