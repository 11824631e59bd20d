# Gives each heading of a document the anchor by which its links name it: the heading in small letters, without
# punctuation, with hyphens for blanks.
/^##+ /{
    h
    s/^##+ //
    s/.*/\L&/
    s/[^[:alnum:] -]//g
    s/ /-/g
    s/.*/ {#&}/
    H
    x
    s/\n//
}
