# Input filter of Doxygen. In the headers a docstring speaks for all declarations below it, up to an empty line,
# the next comment or the end of the block. This makes a member group of them; lines keep their numbers.

function flush() {
    if (count > 1)
        lines[first] = "/**@{*/ " lines[first]
    for (i = 1; i <= total; ++i)
        print lines[i] (count > 1 && i == total ? " /**@}*/" : "")
    total = count = inCode = 0
}

{
    isDoc = $0 ~ /^ *\/\/\/($|[^<\/])/
    isEnd = $0 ~ /^ *($|\/\/[^\/]|[}#]|(public|protected|private):)/ && !(inCode && match($0, /[^ ]/) > indent)
    if (isDoc && inCode || isEnd || !isDoc && !total) {
        flush()
    }
    if (isEnd || !isDoc && !total) {
        print
        next
    }
    lines[++total] = $0
    if (isDoc) {
        if (total == 1)
            first = 1
        next
    }
    if (!inCode) {
        inCode = 1
        indent = match($0, /[^ ]/)
        if ($0 ~ /^ *(class|struct|enum|union|namespace|template) /) {
            flush()
            next
        }
    }
    if (match($0, /[^ ]/) == indent && $0 !~ /^ *}/)
        ++count
}

END { flush() }
