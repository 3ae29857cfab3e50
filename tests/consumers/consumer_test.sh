#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds and runs a client's project against this build tree, the way the client would.
#
# usage: consumer_test.sh KIND BUILD_DIR WORK_DIR CXX CXX_FLAGS
#        KIND: find_package|pkg_config|pkg_config_static|debian|add_subdirectory
#
# CXX and CXX_FLAGS are those of the build tree: sanitizers must agree on both sides.
set -euo pipefail

kind=$1 build=$2 work=$3 cxx=$4 cxx_flags=$5
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$work"
mkdir -p "$work"

# Elsewhere than it was installed to: nothing may depend on where the prefix is.
install_and_move() {
  cmake --install "$build" --prefix "$work/prefix" >/dev/null
  mv "$work/prefix" "$work/moved"
}

build_project() {
  cmake -S "$here/$1" -B "$work/build" -G Ninja -D CMAKE_CXX_COMPILER="$cxx" \
    -D CMAKE_CXX_FLAGS="$cxx_flags" "${@:2}"
  cmake --build "$work/build" -j 2
  "$work/build/consumer"
}

# build_by_pkg_config [OPTION...]: the options are for pkg-config.
build_by_pkg_config() {
  local flags
  pkg-config --exists --print-errors rvfoundation
  read -ra flags < <(pkg-config --cflags --libs "$@" rvfoundation)
  # shellcheck disable=SC2086  # flags, not one
  "$cxx" $cxx_flags -std=c++20 "$here/main.cpp" -o "$work/consumer" "${flags[@]}"
  LD_LIBRARY_PATH=$(pkg-config --variable=libdir rvfoundation) "$work/consumer"
}

# The folder with rvfoundation.pc below another one.
pkg_config_folder() {
  dirname "$(find "$1" -name rvfoundation.pc)"
}

# The tool finds its libraries and its translations wherever it is installed.
check_tool() {
  if [[ ! -e $1 ]]; then return; fi
  local problem
  problem=$(LC_ALL=de_DE.UTF-8 "$1" expiry 1325 2>&1) && return 1
  grep -q "Ablaufmonat '13'" <<<"$problem" || {
    echo "the installed tool does not speak German: $problem" >&2
    return 1
  }
}

# What the tool's users read, and their shells.
check_documents() {
  if [[ ! -e $1/../bin/rvf ]]; then return; fi
  local file
  for file in man/man1/rvf.1.gz bash-completion/completions/rvf zsh/vendor-completions/_rvf \
    rvfoundation/schemas/connect.schema.json; do
    [[ -s $1/$file ]] || {
      echo "the package rvf has no $file" >&2
      return 1
    }
  done
}

case $kind in
  find_package)
    install_and_move
    build_project find_package -D CMAKE_PREFIX_PATH="$work/moved"
    check_tool "$work/moved/bin/rvf"
    ;;
  pkg_config)
    install_and_move
    # Nobody needs more than what is installed here: that is all that pkg-config finds.
    PKG_CONFIG_LIBDIR=$(pkg_config_folder "$work/moved")
    export PKG_CONFIG_LIBDIR
    build_by_pkg_config
    ;;
  pkg_config_static)
    install_and_move
    PKG_CONFIG_PATH=$(pkg_config_folder "$work/moved")
    export PKG_CONFIG_PATH
    build_by_pkg_config --static
    ;;
  debian)
    (cd "$build" && cpack -G DEB -B "$work/packages" >"$work/cpack.log") ||
      { cat "$work/cpack.log" >&2 && exit 1; }
    lintian --allow-root --fail-on error "$work"/packages/*.deb
    mkdir -p "$work/root/var/lib/dpkg"
    as_root=()
    if [[ $EUID -ne 0 ]]; then as_root=(unshare --user --map-root-user); fi
    mkdir "$work/bin"
    ln -s /bin/true "$work/bin/ldconfig" # else the machine's own cache would be renewed
    PATH="$work/bin:$PATH" "${as_root[@]}" dpkg --root="$work/root" --force-depends --force-script-chrootless --no-triggers \
      --log=/dev/null -i "$work"/packages/*.deb
    "$here/package_dependencies_test.py" "$work/packages"
    build_project find_package -D CMAKE_PREFIX_PATH="$work/root/usr"
    PKG_CONFIG_LIBDIR=$(pkg_config_folder "$work/root")
    export PKG_CONFIG_LIBDIR
    build_by_pkg_config
    check_tool "$work/root/usr/bin/rvf"
    check_documents "$work/root/usr/share"
    ;;
  add_subdirectory)
    precompile=$(sed -n 's/^RVF_PRECOMPILE_HEADERS:BOOL=//p' "$build/CMakeCache.txt")
    cxx_flags="$cxx_flags -O0"
    build_project add_subdirectory -D RVFOUNDATION_FOLDER="$here/../.." \
      -D RVF_PRECOMPILE_HEADERS="${precompile:-OFF}"
    ;;
  *)
    sed -n '/^# usage/,/^# *KIND/s/^# //p' "$0" >&2
    exit 2
    ;;
esac
