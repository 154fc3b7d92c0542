# Shared by the project's entry scripts: installs what is missing and builds.
# Sourced, not run.
set -euo pipefail

ROOT_DIR="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="${BUILD_DIR:-$ROOT_DIR/build}"

# Debian 12 packages serving needs (module, platform, cimhost, cdrctl and the
# wbemcli the hints name), and those only the tests, benchmarks and fuzzing need.
SERVE_PACKAGES=(
  cmake g++ make pkg-config
  libsqlite3-dev
  libcpp-httplib-dev libpugixml-dev libcrypt-dev libssl-dev
  libboost-dev libboost-system-dev openssl
  libcli11-dev nlohmann-json3-dev
  sblim-wbemcli
)
REQUIRED_PACKAGES=(
  "${SERVE_PACKAGES[@]}"
  sqlite3
  libgtest-dev libgmock-dev libbenchmark-dev
  valgrind
  curl
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

# Installs what is missing of the packages named, by default REQUIRED_PACKAGES;
# stops the script when some cannot be had.
ensure_packages() {
  local wanted=("$@")
  [ ${#wanted[@]} -eq 0 ] && wanted=("${REQUIRED_PACKAGES[@]}")
  install_packages "${wanted[@]}" || exit 1
}

# Creates the device state in $ZPO_ROOT with the zpo command given:
# a configured CDR service, so that every property can be read and set.
seed_device_state() {
  local zpo="$1" kind key value
  mkdir -p "$ZPO_ROOT"
  while read -r kind key value; do
    "$zpo" reg "set-$kind" CDR CDRService "${key//_/ }" "$value"
  done <<'SETTINGS'
binary FORMAT 01
binary TYPE 00
binary LANG 00
binary FILTER 00
binary FEATURE_CODE f912
binary DATE 00
binary HEADER 00
binary DNIS 00
binary CONNECT 00
binary DIGITSSUPP 00
binary DIGITSLIMIT 0010
binary SCHEDULE 00
binary FILESIZE 0a
int DISKLIMIT 100
binary NAME 00
binary LONGID 00
binary CALLTYPE 00
binary CHARGE 00
binary SUPERVISE 00
binary TIME 00
binary HOSPITAL 00
binary PREFIX_BIN 0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c
binary ACCESS_BIN 0c0c0c0c0c000c0c0c0c0c000c0c0c0c0c000c0c0c0c0c000c0c0c0c0c00
SETTINGS
}

configure_and_build() {
  cmake -S "$ROOT_DIR" -B "$BUILD_DIR" -DCDR_WERROR=ON "$@" >/dev/null
  cmake --build "$BUILD_DIR" -j "$(nproc)"
}

# Runs the suite of the sanitizer tree $1 (further arguments go to ctest).
# Every process the tests start (the host, zpo) writes its sanitizer reports
# under the tree's sanitizer-reports/, so a finding in a child process fails
# the run too, not only one in a test.
run_suite_failing_on_reports() {
  local dir="$1" status=0
  shift
  (cd "$dir" && ctest --output-on-failure -j "$(nproc)" "$@") || status=$?
  if compgen -G "$dir/sanitizer-reports/*" >/dev/null; then
    echo "Sanitizer findings:" >&2
    cat "$dir"/sanitizer-reports/* >&2
    status=1
  fi
  return $status
}

# Builds a second tree with AddressSanitizer and UndefinedBehaviorSanitizer
# and runs the whole suite there.
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
  run_suite_failing_on_reports "$dir" "$@" || status=$?
  unset ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS
  return $status
}

# Builds a third tree with ThreadSanitizer and runs the whole suite there:
# the module's and the platform's tests, and the end-to-end and concurrent
# tests with an instrumented host and zpo.
run_tsan_suite() {
  local dir="${TSAN_BUILD_DIR:-$ROOT_DIR/build-tsan}"
  cmake -S "$ROOT_DIR" -B "$dir" -DCDR_WERROR=ON -DCDR_TSAN=ON -DCDR_BUILD_BENCH=OFF >/dev/null
  cmake --build "$dir" -j "$(nproc)"
  local reports="$dir/sanitizer-reports"
  rm -rf "$reports" && mkdir -p "$reports"
  export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1:log_path=$reports/tsan"
  local status=0
  run_suite_failing_on_reports "$dir" "$@" || status=$?
  unset TSAN_OPTIONS
  return $status
}
