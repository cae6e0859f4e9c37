#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// A new empty directory that is the working directory for as long as this object lives, and is gone afterwards.
struct SCRATCH_DIRECTORY {
  SCRATCH_DIRECTORY() { std::filesystem::current_path(path); }
  ~SCRATCH_DIRECTORY() {
    std::filesystem::current_path(before);
    std::filesystem::remove_all(path);
  }

  std::filesystem::path path = mkdtemp((std::filesystem::temp_directory_path() / "kindex-XXXXXX").string().data());
  std::filesystem::path before = std::filesystem::current_path();
};

/// A value as a text.
template <class VALUE>
std::string shown(VALUE const& value) {
  std::ostringstream text;
  text << std::setprecision(17) << value;
  return text.str();
}

/// What a subsystem and its model do, each of which may return a value.
struct OPERATION {
  template <class OURS, class MODEL>
  OPERATION(char const* n, OURS on_ours, MODEL on_model)
      : name(n), ours(returning(on_ours)), model(returning(on_model)) {}

  char const* name;
  std::function<std::string()> ours;
  std::function<std::string()> model;

private:
  template <class CALL>
  static std::function<std::string()> returning(CALL call) {
    return [call]() -> std::string {
      if constexpr (std::is_void_v<std::invoke_result_t<CALL>>) {
        call();
        return "";
      } else {
        return shown(call());
      }
    };
  }
};

/// A program of operations, which bytes stand for, run on a subsystem and on a plain model of it, and what differed.
class TRIAL {
public:
  /// `title` says in the report which program this is.
  TRIAL(std::string const& title, std::string program) : bytes(std::move(program)), beginning{title} {}

  /// What the operations and fields that follow belong to, where there are several such things.
  std::string subject;

  /// Whether there are operations left and nothing has differed yet.
  bool goes_on() const { return at < bytes.size() && differences.empty(); }

  /// A number below n; 0 at the end of the program.
  std::size_t below(std::size_t n) { return at < bytes.size() ? static_cast<unsigned char>(bytes[at++]) % n : 0; }

  /// What the next n bytes, as far as there are any, stand for: ASCII for itself, the others for telling pieces.
  std::string text(std::size_t n);

  /// Notes what the operations begin with.
  void set_up(std::string const& name, std::string const& text);

  /// Does one of the operations, and compares what it returns.
  void do_one_of(std::vector<OPERATION> const& operations, std::string const& operand);

  template <class FOUND, class EXPECTED>
  void compare(char const* field, FOUND const& found, EXPECTED const& expected) {
    compare_texts(field, shown(found), shown(expected));
  }

  /// The title, what there was at first, and the operations done last with what came of them.
  std::string history() const;

  /// The history and the fields that differ; empty if none does.
  std::string report() const { return differences.empty() ? "" : history() + differences; }

private:
  void compare_texts(char const* field, std::string const& found, std::string const& expected);

  const std::string bytes;
  std::size_t at = 0;
  std::vector<std::string> beginning;
  std::vector<std::string> operations_done;
  std::string differences;
};

// Each runs a trial of a subsystem, in an empty working directory.
void strings_model(TRIAL& trial);
void containers_model(TRIAL& trial);
void reader_model(TRIAL& trial);
