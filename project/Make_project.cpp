#include "project/Make_project.h"

#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "project/Elements.h"

namespace {

// The make file as it is written. What stands between « and » is filled in for each target; «» stands for nothing and
// keeps the blank that ends a line in sight.

constexpr std::string_view preamble = R"(INCDIR := all_includes
# Test if KMAKE_SCRATCH_DIR is defined. If yes, relocate the object dir to it (usually to a local disk). Ask PLW for more infos
ifneq ($(KMAKE_SCRATCH_DIR),"")
  OBJDIR := $(KMAKE_SCRATCH_DIR)/$(shell basename `pwd`)_$(DBG)$(K7MACHINE)
else
  OBJDIR := o_$(DBG)$(K7MACHINE)
endif

DBG = «»
STD_GCC_OPTS = «»
CC = $(shell $(K7PATH)/sbin/Kcxx)
CFLAGS = -I${INCDIR} $(shell $(K7PATH)/sbin/kavo_m_type -cflags)
LDFLAGS = -Wall -lm -lpthread  -lrt -ldl -rdynamic

# this first explicit target allows to post-pone the real targets at the end of the makefile
all : report_at_end

#
# You should usually not edit anything below
#

# update kBase/KsetCompiInfo.c if needed
dummy := $(shell ${K7PATH}/sbin/Kmake_date_file)

# this function search for a given file ($2) into a given directory list($1)
pathsearch = $(firstword $(wildcard $(addsuffix /$(2),$(subst :, ,$(1)))))

#
# Implicit rules
#

# How to compile a .o file from a .c file
$(OBJDIR)/%.o : %.c
	$(CC) -c $(CFLAGS) $< -o $@

# How to compile a .o file from a .k file
$(OBJDIR)/%.o : %.k
	@echo Running KavFront on $<
	KavFront $< -o $*.c
	$(CC) -c $(CFLAGS) $< -o $@
	if [ -f $*.c ] ; then rm -f $*.c ; fi

# How to build the dependencies
$(OBJDIR)/%.d: %.c
	@echo Computing dependency graph for $<
	@rm -f $@
	@$(CC) $(INC_ALL_DIRS) -MM $(CFLAGS) $< > $@.new
	@sed 's,\($*\)\.o[ :]*,$(OBJDIR)/\1.o $@ : ,g' < $@.new > $@
	@rm -f $@.new

# Declare some fake targets to create directories (GNU make pre-requisities sometimes fail)
$(OBJDIR)/.exists :
	@echo Creating directory $(OBJDIR)
	@mkdir -p $(OBJDIR)
	@touch $@

make_obj_dir : $(OBJDIR)/.exists

$(INCDIR)/.exists :
	@echo Creating directory $(INCDIR)
	@mkdir -p $(INCDIR)
	@touch $@

make_inc_dir : $(INCDIR)/.exists

make_all_dirs : make_inc_dir make_obj_dir

# A make subprogram to build includes targets
#   it generates on the fly (see the call below) a tuned implicit rule
#   one cannot use directly a single implicit rule, because an implicit rule is analysed after all make function/routine evaluation
define Check_include =
$(INCDIR)/$(notdir $(1)) : $(call pathsearch,$(wildcard k*),$(notdir $(1)))
#	@echo Making $$@ from $$<
	@cp -v -f $$< $$@
endef

)";

// «gap» and «library note» tell the two kinds of block apart.
constexpr std::string_view block = R"(#
# Definition of target «name»
#
dirs«i» := «dirs»

# VPATH =$(subst ,:,$(dirs«i»)«gap»)

h_files«i» := $(foreach ddir,$(dirs«i»),$(wildcard $(ddir)/*.h))
c_files«i» := $(foreach ddir,$(dirs«i»),$(wildcard $(ddir)/*.c))
OBJS«i» := $(addprefix $(OBJDIR)/, $(patsubst %.c,%.o, $(notdir $(c_files«i»)) )  )
HFIL«i» := $(addprefix $(INCDIR)/, $(notdir $(h_files«i»)) )
DEPS«i» := $(addprefix $(OBJDIR)/, $(patsubst %.c,%.d, $(notdir $(c_files«i»)) )  )

# Add all include targets: when $(INCDIR)/toto.h is out-of-date regarding the real toto.h, update it
«library note»$(foreach hfile,$(h_files«i»),$(eval $(call Check_include,$(hfile))))

# Make sure $(OBJDIR) exists
# Dont use GNU make pre-resuisities as it fails sometimes
# $(OBJS«i») $(DEPS«i») : | $(OBJDIR)



)";

constexpr std::string_view library_note =
    R"(#   a single global implicit rule is not convenient as it is analysed after all make function/routines
)";

constexpr std::string_view targets = R"(#
# targets
#

# tell make where to search for prerequisites (eg all .c .k files), in addition of fully qualified names
VPATH = $(subst ,:, «all dirs»)

# build a global var which contains all k* directories (necessary to compute the graph dependency the first time)
INC_ALL_DIRS = $(foreach ddir,«all dirs»,-I$(ddir))

report_at_end : make_all_dirs «last target»

)";

constexpr std::string_view dependencies = R"(#
# include all deps
#
«all dependencies»
$(OBJDIR):
	@echo Creating $(OBJDIR)
	mkdir $(OBJDIR)

)";

constexpr std::string_view library_rule =
    R"(# this target depends on $(INCDIR)/*.h : those files will be updated if k*/*.h files changed
«target» : $(HFIL«i») $(DEPS«i») $(OBJS«i»)
	Klink «install»$(KlinkFlag) $(KlinkFlag2) -o «output» $(OBJS«i»)


)";

constexpr std::string_view executable_rule = R"(«target» : $(HFIL«i») «libraries» $(DEPS«i») $(OBJS«i») «»
	$(CC) -L${K7PATH}/PUBLIC/lib-${K7MACHINE} -I${K7PATH}/include $(BFLAGS) -o «name»_$(K7MACHINE) $(OBJS«i») «public tree»«links»

)";

constexpr std::string_view all_dirs_entry = "$(dirs«i») ";
constexpr std::string_view dependencies_entry = "-include $(DEPS«i»)\n";

constexpr std::string_view library_in_place = "lib$(DBG)«name».so";
constexpr std::string_view library_in_public_tree = "$(K7PATH)/PUBLIC/$(DBG)lib-$(K7MACHINE)/lib«name».so";
constexpr std::string_view library_output_for_public_tree = "lib«name».so";
constexpr std::string_view executable_file = "«name»_$(DBG)$(K7MACHINE)";

constexpr std::string_view public_tree_option = " -L$(K7PATH)/$(DBG)lib-$(K7MACHINE) ";
constexpr std::string_view link_from_public_tree = "-l«name» ";
constexpr std::string_view link_in_place = "-l$(DBG)«name» ";

using HOLES = std::initializer_list<std::pair<std::string_view, std::string>>;

std::string_view find_hole(HOLES holes, std::string_view name) {
  for (auto const& [given, content] : holes) {
    if (given == name) return content;
  }
  if (name.empty()) return "";
  std::cerr << "Nothing to fill in for " << name << " in a text of the make file\n";
  std::abort();
}

/// One of the texts above with its holes filled. One that is not among `holes` ends the program.
std::string fill(std::string_view text, HOLES holes) {
  constexpr std::string_view opening = "«", closing = "»";
  std::string filled;
  for (std::size_t at = 0; (at = text.find(opening)) != std::string_view::npos;) {
    const std::size_t name = at + opening.size(), end = text.find(closing);
    filled += text.substr(0, at);
    filled += find_hole(holes, text.substr(name, end - name));
    text.remove_prefix(end + closing.size());
  }
  return filled += text;
}

class MAKE_FILE_WRITER {
public:
  MAKE_FILE_WRITER(MAKE_PROJECT const& project, std::ostream& file, std::ostream& progress_lines)
      : out(file), progress(progress_lines), install_public(project.install_public), libraries(elements(project.libs)),
        executables(elements(project.targets)) {
    for (MAKE_LIB const* library : libraries) library_names.insert(library->name.str);
  }

  void write() {
    out << fill(preamble, {});
    int index = 0;
    for (MAKE_LIB const* library : libraries) {
      progress << "Lib " << library->name << std::endl;
      write_block(index++, library->name, library->dirs, true);
    }
    for (MAKE_TARGET const* executable : executables) {
      progress << "Target " << executable->name << std::endl;
      write_block(index++, executable->name, executable->dirs, false);
    }
    out << fill(targets, {{"all dirs", for_each_index(all_dirs_entry)}, {"last target", last_target()}});
    write_rules();
    out << fill(dependencies, {{"all dependencies", for_each_index(dependencies_entry)}});
  }

private:
  std::ostream& out;
  std::ostream& progress;
  const bool install_public;
  const std::span<MAKE_LIB*> libraries;
  const std::span<MAKE_TARGET*> executables;
  std::unordered_set<std::string_view> library_names;

  const std::string_view library_file = install_public ? library_in_public_tree : library_in_place;
  const std::string_view library_output = install_public ? library_output_for_public_tree : library_in_place;
  const std::string_view link_option = install_public ? link_from_public_tree : link_in_place;

  bool is_library(STRING const& directory) const { return library_names.contains(directory.str); }

  static std::string with_name(std::string_view text, STRING const& name) { return fill(text, {{"name", name.str}}); }

  void write_block(int index, STRING const& name, LIST<STRING> const& dirs, bool for_library) {
    std::string own_dirs;
    for (STRING const& directory : dirs) {
      if (for_library || !is_library(directory)) (own_dirs += directory.str) += ' ';
    }
    out << fill(block, {{"i", itoa(index).str},
                        {"name", name.str},
                        {"dirs", own_dirs},
                        {"gap", for_library ? "" : " "},
                        {"library note", std::string(for_library ? library_note : "")}});
  }

  std::string for_each_index(std::string_view text) const {
    std::string all;
    const int count = static_cast<int>(libraries.size() + executables.size());
    for (int i = 0; i < count; ++i) all += fill(text, {{"i", itoa(i).str}});
    return all;
  }

  std::string last_target() const {
    if (!executables.empty()) return with_name(executable_file, executables.back()->name);
    return libraries.empty() ? "" : with_name(library_file, libraries.back()->name);
  }

  /// The rules, the last target's first.
  void write_rules() {
    int index = static_cast<int>(libraries.size() + executables.size());
    for (auto i = executables.size(); i > 0; --i) write_executable_rule(--index, *executables[i - 1]);
    for (auto i = libraries.size(); i > 0; --i) write_library_rule(--index, libraries[i - 1]->name);
  }

  void write_library_rule(int index, STRING const& name) {
    out << fill(library_rule, {{"i", itoa(index).str},
                               {"target", with_name(library_file, name)},
                               {"install", install_public ? "-inst " : ""},
                               {"output", with_name(library_output, name)}});
  }

  void write_executable_rule(int index, MAKE_TARGET const& executable) {
    std::string files, options;
    for (STRING const& directory : executable.dirs) {
      if (!is_library(directory)) continue;
      files += with_name(library_file, directory) + ' ';
      options += with_name(link_option, directory);
    }
    out << fill(executable_rule, {{"i", itoa(index).str},
                                  {"name", executable.name.str},
                                  {"target", with_name(executable_file, executable.name)},
                                  {"libraries", files},
                                  {"public tree", std::string(install_public ? public_tree_option : "")},
                                  {"links", options}});
  }
};

} // namespace

void MAKE_PROJECT::splash() { create_project_file(); }

void MAKE_PROJECT::create_project_file() {
  if (file_name == "") file_name = "kmakefile";
  std::ofstream out(file_name.str);
  write(out, std::cout);
}

void MAKE_PROJECT::write(std::ostream& out, std::ostream& progress) const {
  MAKE_FILE_WRITER(*this, out, progress).write();
}
