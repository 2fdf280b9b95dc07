# Input filter of Doxygen. In the headers a docstring speaks for all declarations below it, up to an empty line,
# the next comment or the end of the block. This makes a member group of them, and of the comment at the top the
# docstring of the file, which goes into the group of its folder (groups.dox). Lines keep their numbers.

function out(line) {
    print (isOpen ? "/**@}*/ " : "") line
    isOpen = 0
}

function flush() {
    for (i = 1; i <= total; ++i)
        out((i == 1 && count > 1 ? "/**@{*/ " : "") lines[i])
    isOpen = count > 1
    total = count = inCode = 0
}

# What the calls need from other folders counts as theirs. `root` is the project's folder, with a slash.
function group(    folder) {
    folder = substr(FILENAME, length(root) + 1)
    sub(/\/.*/, "", folder)
    return folder ~ /^(host|core|log)$/ ? "ze_" folder : "ze_api"
}

# The line that ends the comment at the top is empty: the command before it takes that line's place.
NR == 1 && /^\/\/ / {
    print "/** @file"
    inTop = 1
}

inTop && /^\/\// {
    top = top substr($0, 4) "\n"
    next
}

inTop {
    printf "%s@ingroup %s */ /** @addtogroup %s */ /**@{*/", top, group(), group()
    print ""
    inTop = 0
    next
}

{
    column = match($0, /[^ ]/)
    isDoc = $0 ~ /^ *\/\/\/($|[^<\/])/
    isEnd = $0 ~ /^ *($|\/\/[^\/]|#|(public|protected|private):)/ && !(inCode && column > indent) ||
            inCode && column < indent
    if (isDoc && inCode && column <= indent || isEnd)
        flush()
    if (isEnd || !isDoc && !total) {
        out($0)
        next
    }
    lines[++total] = $0
    if (isDoc && !inCode)
        next
    if (!inCode) {
        inCode = 1
        indent = column
        if ($0 ~ /^ *(class|struct|enum|union|namespace|template) /) {
            flush()
            next
        }
    }
    if (column == indent && $0 !~ /^ *}/)
        ++count
}

END {
    flush()
    if (isOpen)
        print "/**@}*/"
    if (top)
        print "/**@}*/"
}
