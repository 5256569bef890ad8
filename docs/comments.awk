# Makes documentation comments of the headers' plain ones, for doxygen alone:
#
#     /* ==== Title ==== */      begins a module
#     /* ... */                  describes the declarations that follow it without a blank line
#     declaration; /* ... */     describes this declaration as well
#
# The first comment describes the file. What is indented in a comment stays as it is laid out. Members
# of records and enumerations are covered by what is said of the whole; any other declaration that no
# comment covers is left without one, for doxygen to complain about. Lines keep their numbers.

function escaped(text) {
    gsub(/[\\@<>&]/, "\\\\&", text)
    return text
}

# `before` is the code in front of the comment on its line.
function start_comment(text, before) {
    code_before = before
    comment = ""
    is_laid_out = 0
    add_to_comment(text)
}

function add_to_comment(text,    mark) {
    in_comment = !sub(/[ \t]*\*\/.*$/, "", text)
    sub(/^[ \t]*\/?\* ?/, "", text)
    if (code_before != "") {
        sub(/^[ \t]+/, "", text)
    }
    mark = ""
    if (text != "" && is_laid_out != (text ~ /^  /)) {
        mark = is_laid_out ? "@endverbatim " : "@verbatim "
        is_laid_out = !is_laid_out
    }
    comment = comment (comment == "" ? "" : "\n") mark (is_laid_out ? text : escaped(text))
    if (!in_comment) {
        end_comment()
    }
}

function end_comment() {
    if (is_laid_out) {
        comment = comment "@endverbatim"
    }
    if (code_before != "") {
        print code_before "/**< " comment " */"
        end_code(code_before)
    } else if (!has_description) {
        print "/** @file\n" comment " */"
        has_description = 1
    } else if (depth == 0 && comment ~ /^====/) {
        begin_module()
    } else {
        print "/** " comment " */"
        if (depth == 0) {
            shared = comment
            is_written = 1
        }
    }
}

function begin_module() {
    gsub(/==+ */, "", comment)
    if (modules > 0) {
        printf "/** @} */ "
    }
    modules++
    print "/** @defgroup module_" modules " " comment "\n@{ */"  # in the place of the blank line
    is_blank_used = 1
    shared = ""
}

# A declaration begins: it gets the comment that it shares, unless that stands right above it.
function begin_declaration(    copy) {
    copy = shared
    if (copy !~ /@verbatim/) {
        gsub(/\n/, " ", copy)
    }
    if (copy != "" && !is_written) {
        printf "/** %s */ ", copy
    }
    is_written = 0
    is_declaring = 1
}

function end_code(code,    opened, closed) {
    opened = gsub(/{/, "{", code)
    closed = gsub(/}/, "}", code)
    depth += opened - closed
    if (depth == 0 && code ~ /;[ \t]*$/) {
        is_declaring = 0
    }
}

function add_code(line,    start) {
    if (depth == 0 && !is_declaring) {
        begin_declaration()
    }
    start = index(line, "/*")
    if (start > 0) {
        start_comment(substr(line, start), substr(line, 1, start - 1))
    } else {
        print line (depth > 0 && line !~ /[{}]/ ? " /**< @member */" : "")
        end_code(line)
    }
}

in_comment { add_to_comment($0); next }
/^[ \t]*$/ && is_blank_used { is_blank_used = 0; next }
/^[ \t]*$/ { shared = ""; print; next }
/^#define (CMPNT_API|CMPNT_PRINTF|VX_PRINTF)/ { print ""; next }
/^#define/ && !/\\$/ && NF == 2 { print; next }
/^#define/ { begin_declaration(); is_declaring = 0; in_macro = 1 }
in_macro { in_macro = /\\$/; print; next }
/^#ifdef __cplusplus/ { print (modules > 0 ? "/** @} */" : ""); is_linkage = 1; next }
is_linkage { is_linkage = !/^#endif/; print ""; next }
/^#/ { print; next }
/^[ \t]*\/\*/ { start_comment($0, ""); next }
{ add_code($0) }
