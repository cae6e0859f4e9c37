#include "lib/files/File.h"
#include "tests/Trial.h"

namespace {

using std::string;

bool ends_line(char c) { return c == '\n' || c == '\r'; }

/// A reader that takes its characters one by one, with the stream's own functions.
struct PLAIN_READER : ASCII_FILE {
  using ASCII_FILE::ASCII_FILE;

  bool starts_comment(char c) const { return skip_comments != 0 && (c == '%' || c == '#'); }

  STRING getSTRING() {
    STRING token;
    if (read_included(token)) return token;
    for (read_token(token); token == "#define" && success; read_token(token)) add_def();
    return success ? def_mask(token) : token;
  }

  /// Reads the token from the included file, if there is one that has not ended.
  bool read_included(STRING& token) {
    if (included_file == nullptr) return false;
    token = static_cast<PLAIN_READER*>(included_file)->getSTRING();
    success = included_file->ok;
    if (token == "EOF") {
      delete std::exchange(included_file, nullptr);
      return false;
    }
    def_mask(token);
    return true;
  }

  void read_token(STRING& token) {
    current_file = this;
    line_changed = false;
    set_position();
    char c = ' ';
    while (get(c) && (starts_comment(c) || allowed_character(c) == 0)) {
      line_changed = line_changed || starts_comment(c) || ends_line(c);
      if (starts_comment(c)) empty_line();
    }
    string text;
    for (; !fail() && allowed_character(c) == 1; get(c)) text += c;
    success = !text.empty();
    token = success ? text.c_str() : "EOF";
    if (success) eof() ? clear() : back1();
  }

  void include_file() {
    auto* const inner = new PLAIN_READER(getSTRING().str, 0);
    inner->parent_file = this;
    delete std::exchange(included_file, inner);
  }
};

/// Collects the errors that are reported, and returns.
struct COLLECTING_MESSAGER : ERROR_MESSAGER {
  string reports;
  COLLECTING_MESSAGER() { reassign_error_messager(this); }
  void err_message(STRING text, char const*, int) override { reports += text.str + string("; "); }
  using ERROR_MESSAGER::err_message;
};

/// The innermost of the files that this one includes, or itself.
template <class READER>
READER& innermost(READER& file) {
  READER* inner = &file;
  while (inner->included_file != nullptr) inner = static_cast<READER*>(inner->included_file);
  return *inner;
}

string joined(LIST<STRING> const& words) {
  string result;
  for (STRING const& text : words) result += text.str + string(" ");
  return result;
}

void compare_files(TRIAL& trial, ASCII_FILE& ours, ASCII_FILE& plain) {
  trial.compare("name", ours.name, plain.name);
  trial.compare("ok", ours.ok, plain.ok);
  trial.compare("line_changed", ours.line_changed, plain.line_changed);
  trial.compare("previous_pos", ours.previous_pos, plain.previous_pos);
  trial.compare("position", ours.get_position(), plain.get_position());
  trial.compare("rdstate", ours.rdstate(), plain.rdstate());
  trial.compare("def_keys", joined(ours.def_keys), joined(plain.def_keys));
  trial.compare("def_values", joined(ours.def_values), joined(plain.def_values));
  const bool both = ours.included_file != nullptr && plain.included_file != nullptr;
  trial.compare("includes a file", ours.included_file != nullptr, plain.included_file != nullptr);
  if (both) compare_files(trial, *ours.included_file, *plain.included_file);
}

} // namespace

void reader_model(TRIAL& trial) {
  for (char const* const name : {"f1", "f2", "f0"}) {
    const string text = trial.text(trial.below(trial.below(2) == 0 ? 60 : 6));
    trial.note(name, text);
    std::ofstream(name) << text;
  }
  ASCII_FILE ours("f0", 0);
  PLAIN_READER plain("f0", 0);
  COLLECTING_MESSAGER messager;
  const auto token = [&](auto& reader) {
    messager.reports = "";
    STRING const word = reader.getSTRING();
    return messager.reports + word.str;
  };
  const OPERATION read = {"getSTRING", [&] { return token(ours); }, [&] { return token(plain); }};
  const std::vector<OPERATION> operations = {
      {"include_file", [&] { innermost(ours).include_file(); }, [&] { innermost(plain).include_file(); }},
      {"skip_comments ^= 1", [&] { innermost(ours).skip_comments ^= 1; }, [&] { innermost(plain).skip_comments ^= 1; }},
      {"back", [&] { ours.back(); }, [&] { plain.back(); }},
      {"rewind", [&] { ours.rewind(); }, [&] { plain.rewind(); }},
      read,
      read,
      read,
      read,
      read,
      read,
      read,
      read};
  while (trial.goes_on() && trial.do_one_of(operations, "")) compare_files(trial, ours, plain);
}
