# Shared by scripts/openwbem-check and scripts/differential. Sourced after
# common.sh and cross.sh, not run.
#
# prepare_openwbem PREFIX ARCH RUN_NAME builds the module, the platform and
# zpo against the OpenWBEM install at PREFIX (for ARCH when not empty) in
# build-ow-<series>[-<arch>]/, checks that the module resolves every symbol,
# and deploys it as it ships (scripts/owcimomd deploy) in
# build-ow-.../RUN_NAME/deployment. It sets PREFIX, SERIES, VERSION, OWBUILD,
# RUN (build-ow-.../RUN_NAME, emptied, with log/ and state/), EMULATOR, MODULE,
# ZPO, DEPLOYMENT, PROVIDERS, TTL and IDLE_SECONDS, and stops the deployment's
# owcimomd when the calling script exits.

# A loopback port nobody listens on (never 5988-5990, the usual ones).
free_port() {
  local port
  for _ in $(seq 1 100); do
    port=$((20000 + RANDOM % 20000))
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || { echo "$port"; return; }
  done
  return 1
}
stop_owcimomd() { "$ROOT_DIR/scripts/owcimomd" stop "$DEPLOYMENT"; }

prepare_openwbem() {
  PREFIX="$(cd "$1" && pwd)"
  ARCH="$2"
  local run_name="$3"
  [ -x "$PREFIX/sbin/owcimomd" ] && [ -x "$PREFIX/bin/owmofc" ] ||
    { echo "$PREFIX: no sbin/owcimomd or bin/owmofc" >&2; exit 2; }
  # OW_NAMESPACE came with the versioned namespace of 3.1 and later.
  if grep -q 'OW_NAMESPACE' "$PREFIX/include/openwbem/OW_config.h"; then SERIES=3.2; else SERIES=3.0; fi
  VERSION="$(sed -n 's/^#define OW_VERSION *"\(.*\)".*/\1/p' "$PREFIX/include/openwbem/OW_config.h")"

  ensure_packages
  # The end-to-end tests and zpo come from the normal build.
  configure_and_build

  OWBUILD="$ROOT_DIR/build-ow-$SERIES${ARCH:+-$ARCH}"
  RUN="$OWBUILD/$run_name"
  rm -rf "$RUN" && mkdir -p "$RUN/log" "$RUN/state"
  local options=() qemu undefined
  if command -v ccache >/dev/null; then
    options=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
  fi
  EMULATOR=""
  if [ -n "$ARCH" ]; then
    # shellcheck disable=SC2046
    install_packages $(cross_host_packages "$ARCH") || exit 1
    SYSROOT="$ROOT_DIR/build-$ARCH/sysroot"
    cross_sysroot "$ARCH" "$ROOT_DIR/build-$ARCH" || exit 1
    qemu="$(sed -n 's/^set(CDR_CROSS_QEMU \(.*\))$/\1/p' "$ROOT_DIR/cmake/toolchain-$ARCH.cmake")"
    EMULATOR="$(command -v "$qemu-static" || command -v "$qemu") -L $SYSROOT"
    options+=(-DCMAKE_TOOLCHAIN_FILE="$ROOT_DIR/cmake/toolchain-$ARCH.cmake" -DCDR_CROSS_SYSROOT="$SYSROOT")
  fi

  echo "== build the module against OpenWBEM $SERIES${ARCH:+ for $ARCH} at $PREFIX"
  cmake -S "$ROOT_DIR" -B "$OWBUILD" -DOPENWBEM_PREFIX="$PREFIX" -DCDR_WERROR=ON -DCDR_BUILD_TESTS=OFF \
    -DCDR_BUILD_BENCH=OFF -DCMAKE_INSTALL_PREFIX="$OWBUILD/stage" "${options[@]}" >"$RUN/configure.log"
  cmake --build "$OWBUILD" -j "$(nproc)" --target CDRProvider zpo >"$RUN/build.log" 2>&1 ||
    { tail -30 "$RUN/build.log"; exit 1; }
  cmake --install "$OWBUILD" --component provider >"$RUN/install.log"
  MODULE="$OWBUILD/stage/lib/openwbem/c++providers/libCDRProvider.so"
  if [ -n "$ARCH" ]; then
    # The device state is read and changed by zpo of the same CPU.
    ZPO="$RUN/zpo"
    printf '#!/bin/sh\nexec %s %q "$@"\n' "$EMULATOR" "$OWBUILD/bin/zpo" >"$ZPO" && chmod +x "$ZPO"
    LDD=("$OWBUILD/emulated/ldd-r")
  else
    ZPO="$BUILD_DIR/bin/zpo"
    LDD=(ldd -r)
  fi
  LD_LIBRARY_PATH="$PREFIX/lib:$OWBUILD/lib" "${LDD[@]}" "$MODULE" >"$RUN/ldd.txt" 2>&1
  undefined=$(grep -c 'undefined symbol\|not found' "$RUN/ldd.txt" || true)
  if [ "$undefined" != 0 ]; then cat "$RUN/ldd.txt"; echo "ldd -r: $undefined unresolved" >&2; exit 1; fi

  # The deployment that ships: OpenWBEM's own providers beside the module, the
  # install's configuration; a time-to-live of one minute lets the unloader
  # act within the lifecycle test's idle time.
  TTL="${OW_PROV_TTL:-1}"
  IDLE_SECONDS="${OW_IDLE_SECONDS:-240}"
  DEPLOYMENT="$RUN/deployment"
  echo "== deploy with $PREFIX/bin/owmofc and OpenWBEM's own providers (cppprovifc.prov_TTL = $TTL)"
  "$ROOT_DIR/scripts/owcimomd" deploy "$DEPLOYMENT" --prefix "$PREFIX" --module "$MODULE" \
    --mof "$ROOT_DIR/CDR/CDROAM/mof/QTX_CDR.mof" --libs "$OWBUILD/lib" --ttl "$TTL" --emulator "$EMULATOR" \
    ${OW_PRISTINE_REPOSITORY:+--pristine "$OW_PRISTINE_REPOSITORY"} >"$RUN/deploy.log"
  PROVIDERS="$(cd "$DEPLOYMENT/providers" && ls -- *.so | tr '\n' ' ')"

  trap stop_owcimomd EXIT
}
