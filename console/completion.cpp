#include "console/completion.h"

#include "console/options.h"
#include "console/outline.h"
#include "sim/profile.h"

namespace mira::console {
namespace {

using Words = std::vector<std::string>;

// What a shell's script is made of: words by command path, or by path and argument. A positional
// argument stands as its number, or "*" where it takes all that follow.
struct Tables {
  std::map<std::string, Words> verbs;
  std::map<std::string, Words> options;
  std::map<std::string, Words> values;  // choices, "@file", "@attr.list"; empty: any text
};

Words ValuesOf(const OutlineArgument& argument) {
  if (argument.is_file) return {"@file"};
  if (!argument.names_from.empty()) return {"@" + argument.names_from};
  return argument.choices;
}

Tables MakeTables() {
  Tables tables;
  for (const OutlineCommand& command : Outline()) {
    if (!command.verbs.empty()) tables.verbs[command.path] = command.verbs;
    Words& options = tables.options[command.path];
    int position = 0;
    for (const OutlineArgument& argument : command.arguments) {
      std::string place = argument.name;
      if (argument.is_option) {
        options.push_back(argument.name);
        if (!argument.takes_value) continue;
      } else {
        place = argument.takes_many ? "*" : std::to_string(++position);
      }
      tables.values[command.path + " " + place] = ValuesOf(argument);
    }
  }
  return tables;
}

Words GlobalNames() {
  Words names;
  for (const GlobalOption& option : GlobalOptions()) names.push_back(option.name);
  return names;
}

Words Machines() {
  Words names;
  for (const sim::Profile& profile : sim::Profiles()) names.push_back("--sim=" + profile.name);
  return names;
}

// A text between single quotes, which both shells take as it is; `quote` stands for one inside.
std::string Quoted(const std::string& text, const char* quote) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string(quote) : std::string(1, c);
  return quoted + "'";
}

std::string Replaced(std::string text, const std::string& place, const std::string& with) {
  return text.replace(text.find(place), place.size(), with);
}

// ---- bash ----

constexpr char kInBash[] = "'\\''";

std::string BashList(const Words& words) {
  std::string list;
  for (const std::string& word : words) list += (list.empty() ? "" : "\n") + word;
  return Quoted(list, kInBash);
}

std::string BashTable(const char* name, const std::map<std::string, Words>& table) {
  std::string text = std::string("declare -gA ") + name + "=(\n";
  for (const auto& [key, words] : table) {
    text += "  [" + Quoted(key, kInBash) + "]=" + BashList(words) + "\n";
  }
  return text + ")\n";
}

constexpr char kBash[] = R"BASH(
# The names that a command lists on the simulated machine "$2"; without one, those that are known.
_mira_names() {
  if [[ -n $2 ]]; then
    "$3" "$2" completion names "$1" 2>/dev/null
  else
    printf '%s\n' "${_mira_known[$1]-}"
  fi
}

_mira() {
  local program=$1 path=mira machine= option= position=0 word offers typed key prefix=
  local -a words=()
  local i joins=0
  # bash takes --sim=laptop for three words.
  for ((i = 1; i <= COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if ((${#words[@]})) && { ((joins)) || [[ $word == "=" ]]; }; then
      words[${#words[@]}-1]+=$word
    else
      words+=("$word")
    fi
    joins=0
    [[ $word == "=" ]] && joins=1
  done
  COMPREPLY=()
  ((${#words[@]})) || return 0
  typed=${words[${#words[@]}-1]}
  unset "words[${#words[@]}-1]"
  for word in "${words[@]}"; do
    if [[ -n $option ]]; then
      option=
    elif [[ $word == --sim || $word == --sim=* ]]; then
      machine=$word
    elif [[ $word == --value || -n ${_mira_values["$path $word"]+set} && $word == --* ]]; then
      option=$word
    elif [[ $word == -* ]]; then
      :
    elif [[ -n ${_mira_options["$path $word"]+set} ]]; then
      path="$path $word"
    else
      position=$((position + 1))
    fi
  done
  if [[ -z $option && $typed == --*=* && $typed != --sim=* ]]; then
    option=${typed%%=*}
    typed=${typed#*=}
  fi
  if [[ -n $option ]]; then
    offers=${_mira_values["$path $option"]-}
  elif [[ $typed == --sim=* ]]; then
    offers=$_mira_machines
  elif [[ $typed == -* ]]; then
    offers=${_mira_options[$path]-}$'\n'$_mira_globals
  elif [[ -n ${_mira_verbs[$path]-} ]]; then
    offers=${_mira_verbs[$path]}
  else
    key="$path $((position + 1))"
    [[ -n ${_mira_values[$key]+set} ]] || key="$path *"
    offers=${_mira_values[$key]-}
  fi
  if [[ $offers == @file ]]; then
    compopt -o default 2>/dev/null
    return 0
  fi
  [[ $offers == @* ]] && offers=$(_mira_names "${offers#@}" "$machine" "$program")
  # What stands before the last "=" is no part of the word that bash replaces.
  [[ $typed == --sim=* && $COMP_WORDBREAKS == *=* ]] && prefix=--sim=
  typed=${typed//\\/}
  while IFS= read -r word; do
    word=${word%$'\r'}
    [[ -n $word && $word == "$typed"* ]] || continue
    printf -v word '%q' "${word#"$prefix"}"
    COMPREPLY+=("$word")
  done <<<"$offers"
}
complete -F _mira mira mira.exe
)BASH";

// ---- PowerShell ----

constexpr char kInPowerShell[] = "''";

std::string PowerShellList(const Words& words) {
  std::string list;
  for (const std::string& word : words) {
    list += (list.empty() ? "" : ", ") + Quoted(word, kInPowerShell);
  }
  return "@(" + list + ")";
}

std::string PowerShellTable(const char* name, const std::map<std::string, Words>& table) {
  std::string text = std::string("  $") + name + " = @{\n";
  for (const auto& [key, words] : table) {
    text += "    " + Quoted(key, kInPowerShell) + " = " + PowerShellList(words) + "\n";
  }
  return text + "  }\n";
}

constexpr char kPowerShell[] =
    R"PS(Register-ArgumentCompleter -Native -CommandName mira, mira.exe -ScriptBlock {
  param($typed, $line, $cursor)
@TABLES@
  $path = 'mira'; $machine = ''; $option = ''; $position = 0
  $elements = @($line.CommandElements | Where-Object { $_.Extent.EndOffset -lt $cursor -or
      ($_.Extent.EndOffset -eq $cursor -and $typed -eq '') })
  $program = $line.CommandElements[0].Extent.Text
  foreach ($element in ($elements | Select-Object -Skip 1)) {
    $word = $element.Extent.Text
    if ($option) { $option = '' }
    elseif ($word -eq '--sim' -or $word -like '--sim=*') { $machine = $word }
    elseif ($word -eq '--value' -or ($word -like '--*' -and $values.ContainsKey("$path $word"))) {
      $option = $word
    }
    elseif ($word -like '-*') { }
    elseif ($options.ContainsKey("$path $word")) { $path = "$path $word" }
    else { $position++ }
  }
  $prefix = ''
  if (-not $option -and $typed -like '--*=*' -and $typed -notlike '--sim=*') {
    $option, $typed = $typed -split '=', 2
    $prefix = "$option="
  }
  if ($option) { $offers = $values["$path $option"] }
  elseif ($typed -like '--sim=*') { $offers = $machines }
  elseif ($typed -like '-*') { $offers = $options[$path] + $globals }
  elseif ($verbs.ContainsKey($path)) { $offers = $verbs[$path] }
  else {
    $key = "$path $($position + 1)"
    if (-not $values.ContainsKey($key)) { $key = "$path *" }
    $offers = $values[$key]
  }
  if (-not $offers -or $offers[0] -eq '@file') { return }
  if ($offers[0] -like '@*') {
    $list = $offers[0].Substring(1)
    # The names on a machine are looked up on simulated ones only.
    if ($machine) { $offers = & $program $machine completion names $list 2>$null }
    else { $offers = $known[$list] }
  }
  $offers | Where-Object { $_ -and $_.StartsWith($typed.Trim("'"), 'OrdinalIgnoreCase') } |
    ForEach-Object {
      $text = if ($_ -match "[^\w=@.:-]") { "'" + $_.Replace("'", "''") + "'" } else { $_ }
      [System.Management.Automation.CompletionResult]::new("$prefix$text", $_, 'ParameterValue', $_)
    }
}
)PS";

}  // namespace

std::string BashCompletion(const KnownNames& known) {
  const Tables tables = MakeTables();
  return "# Completion of mira's command lines in bash (4.3 or later).\n" +
         BashTable("_mira_verbs", tables.verbs) + BashTable("_mira_options", tables.options) +
         BashTable("_mira_values", tables.values) + BashTable("_mira_known", known) +
         "_mira_globals=" + BashList(GlobalNames()) + "\n_mira_machines=" + BashList(Machines()) +
         "\n" + kBash;
}

std::string PowerShellCompletion(const KnownNames& known) {
  const Tables tables = MakeTables();
  return "# Completion of mira's command lines in PowerShell.\n" +
         Replaced(kPowerShell, "@TABLES@\n",
                  PowerShellTable("verbs", tables.verbs) +
                      PowerShellTable("options", tables.options) +
                      PowerShellTable("values", tables.values) + PowerShellTable("known", known) +
                      "  $globals = " + PowerShellList(GlobalNames()) +
                      "\n  $machines = " + PowerShellList(Machines()) + "\n");
}

}  // namespace mira::console
