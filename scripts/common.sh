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
)

ensure_packages() {
  local missing=() p
  for p in "${REQUIRED_PACKAGES[@]}" "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" -ne 0 ]; then
    echo "Missing Debian packages: ${missing[*]}" >&2
    echo "Install them with: sudo apt-get install -y ${missing[*]}" >&2
    exit 1
  fi
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

configure_and_build() {
  cmake -S "$ROOT_DIR" -B "$BUILD_DIR" -DCDR_WERROR=ON "$@" >/dev/null
  cmake --build "$BUILD_DIR" -j "$(nproc)"
}
