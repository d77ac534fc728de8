#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace parvex::jet {

/// SELECT * FROM table [WHERE column = 'text' [AND column = 'text' ...]]
struct Statement {
  struct Condition {
    std::string column;
    std::string text;
  };
  std::string table;
  std::vector<Condition> conditions;
};

/// Blanks may stand anywhere between words, keywords ignore letter case, names may stand in square brackets, texts in
/// single or double quotes; a doubled quote inside a text is one. Anything else is an AutomationError (3075) that shows
/// the statement. So a tag's name with an apostrophe in it breaks the statement that it is put into, which is how the
/// legacy application's database answers as well; callers do not double it.
Statement ParseStatement(std::string_view sql);

}  // namespace parvex::jet
