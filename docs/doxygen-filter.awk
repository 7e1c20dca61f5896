# Shows our plain comments to doxygen: what stands before or after a declaration documents it, and what opens a header
# documents the class that the header is named after.

# Doxygen takes what stands between two quotes of one line as it is.
function escaped(text,    parts, count, i, result) {
    count = split(text, parts, "\"")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 1 || i == count)
            gsub(/[\\@<>&#%]/, "\\\\&", parts[i])
        result = result (i > 1 ? "\"" : "") parts[i]
    }
    return result
}

BEGIN {
    name = ARGV[1]
    sub(/.*\//, "", name)
    sub(/\.h$/, "", name)
    subject = "\\file"
    while ((getline line < ARGV[1]) > 0)
        if (line ~ "^class .*" name "( |$)" && line !~ /;$/)
            subject = "\\class " name
    opening = 1
}

opening && !/^\/\// { opening = 0 }
FNR == 1 && opening { print "/// " subject; print "///" }

/^ *\/\// {
    at = index($0, "//")
    print substr($0, 1, at - 1) "///" escaped(substr($0, at + 2))
    next
}

!/^ *#/ && !/\\$/ && / \/\/ / {
    at = index($0, " // ")
    print substr($0, 1, at - 1) " ///<" escaped(substr($0, at + 3))
    next
}

{ print }
