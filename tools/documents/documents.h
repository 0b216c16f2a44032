#ifndef TOOLS_DOCUMENTS_DOCUMENTS_H
#define TOOLS_DOCUMENTS_DOCUMENTS_H

#include <functional>
#include <string>

#include "documents/entries.h"
#include "exit_status.h"

namespace tool {

std::string man_page(const std::vector<command_entry>& entries);         // for man
std::string bash_completion(const std::vector<command_entry>& entries);  // to be sourced
std::string zsh_completion(const std::vector<command_entry>& entries);   // a function _tessolv

// The secret command by which the build writes them: `tessolv document man`.
void declare_document(CLI::App& program, std::function<exit_status()>& chosen);

}  // namespace tool

#endif
