#!/usr/bin/env bash
# Installs, with Debian's packages, whatever the build needs and is missing.
# Usage: scripts/install-deps.sh [extra-package...]
set -euo pipefail

needed=()
command -v cmake >/dev/null || needed+=(cmake)
command -v g++ >/dev/null || needed+=(g++)
command -v make >/dev/null || needed+=(make)
command -v flex >/dev/null || needed+=(flex)
command -v bison >/dev/null || needed+=(bison)
[ -f /usr/include/gtest/gtest.h ] || needed+=(libgtest-dev)
[ -f /usr/include/nlohmann/json.hpp ] || needed+=(nlohmann-json3-dev)
# The MathML, HTML and graph tests check their output with the tools that
# read it: libxml2 and xmllint, zlib (screenshots), Graphviz and Chromium.
[ -f /usr/include/libxml2/libxml/parser.h ] || needed+=(libxml2-dev)
command -v xmllint >/dev/null || needed+=(libxml2-utils)
[ -f /usr/include/zlib.h ] || needed+=(zlib1g-dev)
command -v dot >/dev/null || needed+=(graphviz)
command -v chromium >/dev/null || needed+=(chromium)
# GMP's integers and rationals for the exact polynomials.
[ -f /usr/include/gmpxx.h ] || needed+=(libgmp-dev)
# clang with its sanitizer and libFuzzer runtimes, for the sanitizer build.
command -v clang++ >/dev/null || needed+=(clang)
compgen -G '/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a' >/dev/null ||
    needed+=(libclang-rt-dev)
for package in "$@"; do
    dpkg -s "$package" >/dev/null 2>&1 || needed+=("$package")
done

if [ ${#needed[@]} -gt 0 ]; then
    echo "installing: ${needed[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq "${needed[@]}" >/dev/null
fi

# A locale with a decimal comma, so that the tests can prove that numbers are
# read and written the same way whatever the host's locale.
if ! locale -a 2>/dev/null | grep -qi '^de_DE.utf'; then
    command -v localedef >/dev/null || { apt-get update -qq && apt-get install -y -qq locales >/dev/null; }
    localedef -i de_DE -f UTF-8 de_DE.UTF-8 || echo "warning: could not generate de_DE.UTF-8"
fi
