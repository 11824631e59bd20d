#!/usr/bin/env bash
# Builds the smallest host the way that other projects do, with the compiler $CXX, and runs it.
#   tests/package/consumer.sh cmake PREFIX FOLDER         find_package, the shared and the static library
#   tests/package/consumer.sh pkg-config PREFIX FOLDER    pkg-config and the compiler alone; also a host in C
#   tests/package/consumer.sh folder SOURCE FOLDER        add_subdirectory; compiled only, which is quick
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

way=$1 place=$2 folder=$3
unset CXXFLAGS LD_LIBRARY_PATH LIBRARY_PATH CPLUS_INCLUDE_PATH

# The figures of tests/reference/bcg_vaccine.json (odds ratio, restricted maximum likelihood), rounded.
run() {
    "$@" | grep -F 'of 13 studies: 0.4746, 95% interval 0.3296 to 0.6835'
}

# Both executables are compiled as C++17 and by none of the flags that the library's own sources are.
check_flags() {
    local commands
    commands=$(grep '"command".*minimal_host' "$folder/compile_commands.json")
    commands=${commands/ -DMETA_ANALYSIS_STATIC/}
    if [[ $(grep -c ' -std=[a-z+]*17' <<<"$commands") != 2 ]] || grep -q ' -[WfDO]' <<<"$commands"; then
        echo "Not the flags that a consumer is to get:" "$commands" >&2
        return 1
    fi
}

configure() {
    quietly "Configuring" cmake -G Ninja -S tests/package/consumer -B "$folder" "$@"
    check_flags
}

rm -rf "$folder"
mkdir -p "$folder"
case $way in
cmake)
    configure -D CMAKE_PREFIX_PATH="$place"
    quietly "Building" cmake --build "$folder"
    run "$folder/with_meta_analysis"
    run "$folder/with_meta_analysis_static"
    ;;
pkg-config)
    PKG_CONFIG_PATH=$(dirname "$(find "$place" -name meta_analysis.pc)")
    export PKG_CONFIG_PATH
    read -ra flags < <(pkg-config --cflags --libs meta_analysis)
    "$CXX" -std=c++17 examples/minimal_host.cpp "${flags[@]}" \
        -Wl,-rpath,"$(pkg-config --variable=libdir meta_analysis)" -o "$folder/host"
    run "$folder/host"
    # The host in C; the figures are those of tests/reference/bcg_vaccine.json.
    "${CC:-cc}" -std=c11 -Wall -Wextra -pedantic -Werror examples/c_host.c "${flags[@]}" -lm \
        -Wl,-rpath,"$(pkg-config --variable=libdir meta_analysis)" -o "$folder/c_host"
    "$folder/c_host" | grep -F 'odds-ratio: 0.4746, 95% interval 0.3296 to 0.6835'
    ;;
folder)
    configure -D META_ANALYSIS_FOLDER="$place"
    object=$(cd "$folder" && ninja -t targets all | grep -o '.*with_meta_analysis\.dir.*minimal_host.cpp.o')
    quietly "Compiling" ninja -C "$folder" "$object"
    ;;
esac
