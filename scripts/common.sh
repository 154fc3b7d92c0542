# Shared by the project's entry scripts: installs what is missing and builds.
# Sourced, not run.
set -euo pipefail

ROOT_DIR="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="${BUILD_DIR:-$ROOT_DIR/build}"

# Debian 12 packages the build, the tests and the host need.
REQUIRED_PACKAGES=(
  cmake g++ make pkg-config
  libsqlite3-dev sqlite3
  libgtest-dev libgmock-dev libbenchmark-dev
  libcpp-httplib-dev libpugixml-dev libcrypt-dev
  sblim-wbemcli curl
  clang libclang-rt-14-dev
)

# Refreshes the package lists; "$@" are extra apt-get options. A mirror in
# the middle of a sync fails some of the indexes: say which, and go on with
# the lists there are.
apt_update() {
  local output status=0
  output="$(apt-get "$@" update 2>&1)" || status=$?
  if [ $status -ne 0 ] || grep -qE '^(Err:|[EW]: Failed to fetch)' <<<"$output"; then
    echo "apt-get update could not get every package list; going on with the lists it has:" >&2
    grep -E '^(Err:|[EW]: )' <<<"$output" | sed 's/^/  /' >&2
  fi
}

# The packages of "$@" that are not installed.
missing_packages() {
  local p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || echo "$p"
  done
}

# Installs the packages of "$@" that are missing, as far as the package lists
# allow: when some cannot be installed, installs the others and names those it
# could not get. Returns 1 then, or when not root.
install_packages() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" -ne 0 ]; then
    echo "Missing Debian packages: ${missing[*]}" >&2
    echo "Install them with: sudo apt-get install -y ${missing[*]}" >&2
    return 1
  fi
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt_update -qq
  local apt_install=(apt-get -o DPkg::Lock::Timeout=600 install -y -qq --no-install-recommends)
  if ! "${apt_install[@]}" "${missing[@]}"; then
    local p
    for p in "${missing[@]}"; do "${apt_install[@]}" "$p" || true; done
    mapfile -t missing < <(missing_packages "${missing[@]}")
    if [ ${#missing[@]} -gt 0 ]; then
      echo "Could not install: ${missing[*]}" >&2
      return 1
    fi
  fi
}

ensure_packages() {
  install_packages "${REQUIRED_PACKAGES[@]}" "$@" || exit 1
}

configure_and_build() {
  cmake -S "$ROOT_DIR" -B "$BUILD_DIR" -DCDR_WERROR=ON "$@" >/dev/null
  cmake --build "$BUILD_DIR" -j "$(nproc)"
}

# Builds a second tree with AddressSanitizer and UndefinedBehaviorSanitizer
# and runs the whole suite there. Every process the tests start (the host,
# zpo) writes its sanitizer reports under the tree's sanitizer-reports/, so a
# finding in a child process fails the run too, not only one in a test.
run_sanitizer_suite() {
  local dir="${ASAN_BUILD_DIR:-$ROOT_DIR/build-asan}"
  # GCC's maybe-uninitialized analysis gives false positives on
  # sanitizer-instrumented code; every other warning still fails the build.
  cmake -S "$ROOT_DIR" -B "$dir" -DCDR_WERROR=ON -DCDR_SANITIZE=ON -DCDR_BUILD_BENCH=OFF \
    -DCMAKE_CXX_FLAGS=-Wno-maybe-uninitialized >/dev/null
  cmake --build "$dir" -j "$(nproc)"
  local reports="$dir/sanitizer-reports"
  rm -rf "$reports" && mkdir -p "$reports"
  export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1:log_path=$reports/asan"
  export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1:log_path=$reports/ubsan"
  export LSAN_OPTIONS="suppressions=$ROOT_DIR/tools/lsan.supp:print_suppressions=0"
  local status=0
  (cd "$dir" && ctest --output-on-failure -j "$(nproc)" "$@") || status=$?
  if compgen -G "$reports/*" >/dev/null; then
    echo "Sanitizer findings:" >&2
    cat "$reports"/* >&2
    status=1
  fi
  unset ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS
  return $status
}
