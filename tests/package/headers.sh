#!/usr/bin/env bash
# Compiles the installed headers without warnings; of C standards that of the C interface alone. Alone, each makes a source by itself, so that none counts
# on what another includes, or includes what is not installed; together they make one source, which is quick.
#   tests/package/headers.sh alone|together COMPILER STANDARD INCLUDE-FOLDER
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

how=$1
export compiler=$2 standard=$3 include=$4

compile() {
    printf '#include <%s>\n' "$@" | "$compiler" "-std=$standard" -x "$language" -fsyntax-only -I "$include" \
        -Wall -Wextra -Wshadow -Wconversion -pedantic -Werror -
}
export -f compile

case $standard in
c++*) export language=c++ && mapfile -t headers < <(cd "$include" && find meta_analysis* -name '*.h' | sort) ;;
*) export language=c && headers=(meta_analysis.h) ;;
esac
echo "${#headers[@]} headers, $how, $standard"
((${#headers[@]} > 0))
case $how in
alone) printf '%s\0' "${headers[@]}" | xargs -0 -P "$(nproc)" -I '{}' bash -c 'compile "{}"' ;;
together) compile "${headers[@]}" ;;
esac
