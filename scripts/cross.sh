# Cross builds for the device's kinds of CPU, tested under qemu user-mode
# emulation: ./scripts/test --arch armhf (32-bit ARM) or --arch s390x
# (64-bit big-endian). Sourced by scripts/test after common.sh.
#
# The compilers are Debian's cross toolchains; the target's libraries are
# the architecture's Debian packages, fetched with apt-get download and
# unpacked into build-<arch>/sysroot/. Package lists of the target live in
# build-<arch>/apt/, so the machine's own apt configuration is left alone.

CROSS_ARCHITECTURES=(armhf s390x)

# What the build and the tests link, with their dependencies. The C library
# and libstdc++ are there for the emulator to run the programs.
CROSS_TARGET_PACKAGES=(
  libc6 libstdc++6 libgcc-s1
  libsqlite3-dev libgtest-dev libgmock-dev
  libcpp-httplib-dev libpugixml-dev libcrypt-dev libssl-dev zlib1g-dev
  libboost-dev libboost-system-dev libcli11-dev nlohmann-json3-dev
)
# Not unpacked: the cross toolchain brings its own C library headers, and a
# second set in the sysroot's include folder would hide them.
CROSS_EXCLUDED_PACKAGES=(libc6-dev libc-dev-bin linux-libc-dev rpcsvc-proto libnsl-dev libtirpc-dev)

cross_host_packages() {
  echo "crossbuild-essential-$1" qemu-user-static
}

# Fills build-<arch>/sysroot unless it already holds the current package set.
cross_sysroot() {
  local arch=$1 dir=$2
  local sysroot="$dir/sysroot" apt="$dir/apt"
  local wanted="${CROSS_TARGET_PACKAGES[*]} -${CROSS_EXCLUDED_PACKAGES[*]}"
  if [ -f "$sysroot/.packages" ] && [ "$(cat "$sysroot/.packages")" = "$wanted" ]; then
    return 0
  fi
  echo "Fetching the $arch libraries into $sysroot"
  rm -rf "$apt/debs" "$sysroot"
  mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/debs" "$sysroot"
  : >"$apt/status"
  local options=(-o "APT::Architecture=$arch" -o "APT::Architectures::=$arch"
                 -o "Dir::State::Lists=$apt/lists" -o "Dir::State::status=$apt/status"
                 -o "Dir::Cache=$apt/cache")
  apt_update "${options[@]}"
  local packages
  packages="$(apt-cache "${options[@]}" depends --recurse --no-recommends --no-suggests --no-conflicts \
                --no-breaks --no-replaces --no-enhances "${CROSS_TARGET_PACKAGES[@]}" |
              grep -v '^[ <]' | sort -u | grep -vxF -f <(printf '%s\n' "${CROSS_EXCLUDED_PACKAGES[@]}"))"
  local package fetched=() unfetched=()
  # Downloaded one by one, so that a failure names its package.
  for package in $packages; do
    if (cd "$apt/debs" && apt-get "${options[@]}" download -qq "$package:$arch" >/dev/null 2>&1); then
      fetched+=("$package")
    else
      unfetched+=("$package")
    fi
  done
  if [ ${#unfetched[@]} -gt 0 ]; then
    echo "Could not download for $arch: ${unfetched[*]}" >&2
    return 1
  fi
  local deb
  for deb in "$apt/debs"/*.deb; do dpkg-deb -x "$deb" "$sysroot"; done
  # Absolute links point into the sysroot, not at the machine's own files.
  local link target
  while IFS= read -r -d '' link; do
    target="$(readlink "$link")"
    case "$target" in /*) ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$sysroot$target")" "$link" ;; esac
  done < <(find "$sysroot" -type l -print0)
  echo "$wanted" >"$sysroot/.packages"
  echo "Unpacked ${#fetched[@]} $arch packages"
}

# Builds for `arch` into build-<arch>/ and runs every test under the emulator;
# further arguments go to ctest.
run_cross_suite() {
  local arch=$1
  shift
  case " ${CROSS_ARCHITECTURES[*]} " in
    *" $arch "*) ;;
    *) echo "--arch: one of ${CROSS_ARCHITECTURES[*]}" >&2; return 2 ;;
  esac
  local dir="$ROOT_DIR/build-$arch"
  # shellcheck disable=SC2046
  install_packages $(cross_host_packages "$arch") || return 1
  cross_sysroot "$arch" "$dir" || return 1
  local launcher=()
  command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  cmake -S "$ROOT_DIR" -B "$dir" -DCMAKE_TOOLCHAIN_FILE="$ROOT_DIR/cmake/toolchain-$arch.cmake" \
    -DCDR_CROSS_SYSROOT="$dir/sysroot" -DCDR_WERROR=ON -DCDR_BUILD_BENCH=OFF "${launcher[@]}" >/dev/null
  cmake --build "$dir" -j "$(nproc)"
  (cd "$dir" && ctest --output-on-failure -j "$(nproc)" "$@")
}
