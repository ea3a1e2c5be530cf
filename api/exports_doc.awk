# awk -f api/exports_doc.awk include/velarto.h api/exports.list: writes doc/exports.md.
# Fails if header and list differ, and says where.

function complain(text) {
  print "exports: " text >"/dev/stderr"
  wrong = 1
}

# A docstring's first sentence.
function first_sentence(text) {
  gsub(/[ \t]+/, " ", text)
  sub(/^ /, "", text)
  sub(/ $/, "", text)
  if (match(text, /\. /)) text = substr(text, 1, RSTART)
  gsub(/[|*<]/, "\\\\&", text)
  gsub(/(JDEC|decoder|NP)_[A-Za-z0-9_]+/, "`&`", text)
  return text
}

# The name without prefix, underscores and case, which differ between the families.
function bare(name) {
  sub(/^(vb_JDEC|JDEC|decoder)_/, "", name)
  gsub(/_/, "", name)
  return tolower(name)
}

# What the header says about an export; without a docstring, that it is like the JDEC_ operation of the same name.
function meaning(name, other) {
  if (said[name] != "") return said[name]
  other = main_name[bare(name)]
  if (other == "" || name ~ /^JDEC_/) complain(name " has no docstring in the header")
  return "As `" other "`."
}

function start_section(title) {
  if (title == section) return
  section = title
  page = page "\n## " title "\n\n| Ordinal | Name | Convention | What it does |\n|---|---|---|---|\n"
}

# ---- The header: docstrings and declarations --------------------------------------------------------------------------

FNR == 1 { ++file }
file == 1 && /^\/\*\* / { doc = ""; in_doc = 1 }
file == 1 && in_doc {
  line = $0
  gsub(/^( \*|\/\*\*)|\*\/ *$/, "", line)
  doc = doc " " line
  if (/\*\//) in_doc = 0
  next
}
file == 1 && /^[A-Za-z].*VELARTO_(CDECL|STDCALL) [A-Za-z_0-9]+\(/ {
  convention = /VELARTO_CDECL/ ? "cdecl" : "stdcall"
  name = $0
  sub(/^.*VELARTO_(CDECL|STDCALL) /, "", name)
  sub(/\(.*/, "", name)
  declared[name] = convention
  said[name] = first_sentence(doc)
  if (name ~ /^JDEC_/) main_name[bare(name)] = name
  doc = ""
  next
}
# A docstring belongs to the declaration directly after it.
file == 1 { doc = "" }

# ---- The list ------------------------------------------------------------------------------------------------------------

file == 2 && /^[0-9]/ {
  if ($1 != ++count) complain("ordinal " $1 " instead of " count)
  if (!($2 in declared)) complain($2 " is not in the header")
  else if (declared[$2] != $3) complain($2 " is " $3 " in the list and " declared[$2] " in the header")
  listed[$2] = 1
  family = $2
  sub(/_.*/, "_", family)
  start_section(family == "NP_" ? "The plug-in's entries, NP_" : "The family " (family == "vb_" ? "vb_JDEC_" : family))
  page = page "| " $1 " | `" $2 "` | " $3 " | " meaning($2) " |\n"
}

END {
  for (name in declared) if (!(name in listed)) complain(name " is in the header and not in the list")
  if (!count) complain("no list")
  if (wrong) exit 1
  print "# The exports\n"
  print "`./run exports` makes this page from [api/exports.list](../api/exports.list) and the docstrings in"
  print "[include/velarto.h](../include/velarto.h), which describe arguments, ownership and results. The `.def`"
  print "files of `velarto.dll` and the version script of `libvelarto.so` are made from the same list."
  print ""
  print "On 32-bit Windows the " count " names are exported undecorated, with these ordinals. Arguments and results"
  print "have 32 bits there, except the results of `NP_`, which have 16. On Linux the names are the same;"
  print "ordinals and calling conventions have no meaning there."
  print ""
  print "\"As\" names the operation that is called: by `vb_JDEC_` without its status word, by `decoder_` only"
  print "if the decoder is not null."
  printf "%s", page
}
