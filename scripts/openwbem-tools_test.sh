#!/usr/bin/env bash
# Tests of the OpenWBEM tools that need no OpenWBEM: what build-openwbem
# refuses before it builds anything, and what scripts/owcimomd makes of an
# install's configuration, with a stand-in install whose owcimomd is a small
# HTTP listener.
set -uo pipefail
scripts="$(cd "$(dirname "$0")" && pwd)"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failures=0 checks=0

# expect NAME WANTED_EXIT PATTERN COMMAND...: the command exits so and says so.
expect() {
  local name=$1 wanted=$2 pattern=$3 status=0
  shift 3
  checks=$((checks + 1))
  "$@" >"$scratch/out" 2>&1 || status=$?
  if [ "$status" != "$wanted" ] || { [ -n "$pattern" ] && ! grep -q -- "$pattern" "$scratch/out"; }; then
    echo "FAIL $name: exit $status (wanted $wanted), output:"; sed 's/^/    /' "$scratch/out"
    failures=$((failures + 1))
  fi
}
# holds NAME FILE PATTERN [COUNT]: FILE has COUNT (default 1) lines matching.
holds() {
  local count
  checks=$((checks + 1))
  count=$(grep -c -- "$3" "$2" || true)
  if [ "$count" != "${4:-1}" ]; then
    echo "FAIL $1: $count lines of $2 match '$3', wanted ${4:-1}"; failures=$((failures + 1))
  fi
}

build="$scripts/build-openwbem"
git init -q --bare "$scratch/empty.git"
expect "build-openwbem without arguments" 2 "--git-dir DIR --series" "$build"
expect "unknown series" 1 "--series: 3.0 or 3.2, not 3.1" "$build" --git-dir "$scratch/empty.git" --series 3.1 --prefix /x
expect "git directory without the tag" 1 "holding the tag RELEASE_3_0_2" \
  "$build" --git-dir "$scratch/empty.git" --series 3.0 --prefix "$scratch/ow"
expect "relative prefix" 1 "an absolute path" "$build" --git-dir "$scratch/empty.git" --series 3.2 --prefix ow
mkdir -p "$scratch/full" && touch "$scratch/full/precious"
expect "prefix holding other files" 1 "holds files but no OpenWBEM install" \
  "$build" --git-dir "$scratch/empty.git" --series 3.2 --prefix "$scratch/full"
expect "unknown architecture" 1 "--arch: one of" \
  "$build" --git-dir "$scratch/empty.git" --series 3.0 --prefix "$scratch/ow" --arch mips

# A stand-in 3.2 install: its configuration as a 3.2 install leaves it
# (placeholders, keys the deployment changes, keys it keeps), an owmofc that
# succeeds and an owcimomd that listens on the configured port.
prefix="$scratch/prefix"
mkdir -p "$prefix/sbin" "$prefix/bin" "$prefix/etc/openwbem" "$prefix/include/openwbem" \
  "$prefix/lib/openwbem/c++providers" "$prefix/var/openwbem/repository.pristine"
echo '#define OW_NAMESPACE OpenWBEM4' >"$prefix/include/openwbem/OW_config.h"
cat >"$prefix/etc/openwbem/openwbem.conf" <<'EOF'
; the install's own
owcimomd.wql_lib = @libdir@/libowwql.@LIB_EXT@
owcimomd.authentication_module = @libdir@/openwbem/authentication/libpamauthentication.@LIB_EXT@
http_server.http_port = 5988
   http_server.listen_addresses = 0.0.0.0
cppprovifc.prov_TTL = 5
owcimomd.restart_on_error = true
owcimomd.pidfile = @PIDFILE_DIR@/@PACKAGE_PREFIX@owcimomd.pid
EOF
printf '#!/bin/sh\nexit 0\n' >"$prefix/bin/owmofc"
cat >"$prefix/sbin/owcimomd" <<'EOF'
#!/bin/sh
# -d -c FILE
port=$(sed -n 's/^http_server.http_port = //p' "$3")
exec python3 -c 'import http.server, sys; http.server.HTTPServer(("127.0.0.1", int(sys.argv[1])), http.server.BaseHTTPRequestHandler).serve_forever()' "$port"
EOF
chmod +x "$prefix/bin/owmofc" "$prefix/sbin/owcimomd"
touch "$prefix/lib/openwbem/c++providers/libowprovpollUnloader.so" "$scratch/CDRProvider.so" "$scratch/classes.mof"
mkdir -p "$scratch/libs"

owcimomd="$scripts/owcimomd"
deployment="$scratch/deployment"
expect "deploy without a module" 2 "scripts/owcimomd deploy DIR" "$owcimomd" deploy "$deployment" --prefix "$prefix"
expect "deploy with a bad TTL" 2 "--ttl: minutes" "$owcimomd" deploy "$deployment" --prefix "$prefix" \
  --module "$scratch/CDRProvider.so" --mof "$scratch/classes.mof" --libs "$scratch/libs" --ttl soon
expect "start before deploy" 2 "no deployment" "$owcimomd" start "$scratch/nothing" 1 "$scratch/state"
expect "deploy" 0 "cppprovifc.prov_TTL = 1" "$owcimomd" deploy "$deployment" --prefix "$prefix" \
  --module "$scratch/CDRProvider.so" --mof "$scratch/classes.mof" --libs "$scratch/libs" --ttl 1
checks=$((checks + 1))
if [ ! -f "$deployment/providers/libowprovpollUnloader.so" ] || [ ! -f "$deployment/providers/libCDRProvider.so" ]; then
  echo "FAIL deploy: the module is not beside OpenWBEM's own providers"; failures=$((failures + 1))
fi

if command -v python3 >/dev/null; then
  port=$((20000 + RANDOM % 20000))
  expect "start" 0 "" "$owcimomd" start "$deployment" "$port" "$scratch/state"
  conf="$deployment/openwbem.conf"
  holds "a changed key appears once, with the deployment's value" "$conf" "^http_server.http_port = $port$"
  holds "the install's line of a changed key is gone" "$conf" "http_server.listen_addresses" 1
  holds "changed to loopback" "$conf" "^http_server.listen_addresses = 127.0.0.1$"
  holds "the TTL" "$conf" "^cppprovifc.prov_TTL = 1$"
  holds "simple authentication" "$conf" "^owcimomd.authentication_module = $prefix/lib/openwbem/authentication/libsimpleauthentication.so$"
  holds "a kept key, its placeholders filled" "$conf" "^owcimomd.wql_lib = $prefix/lib/libowwql.so$"
  holds "a kept key keeps the install's value" "$conf" "^owcimomd.restart_on_error = true$"
  holds "no placeholder left" "$conf" "@" 0
  first="$(cat "$deployment/owcimomd.current-pid")"
  expect "restart" 0 "" "$owcimomd" restart "$deployment"
  second="$(cat "$deployment/owcimomd.current-pid")"
  checks=$((checks + 1))
  if [ "$first" = "$second" ] || kill -0 "$first" 2>/dev/null || ! kill -0 "$second" 2>/dev/null; then
    echo "FAIL restart: $first should be gone and $second running"; failures=$((failures + 1))
  fi
  holds "restart keeps the port" "$deployment/openwbem.conf" "^http_server.http_port = $port$"
  expect "stop" 0 "" "$owcimomd" stop "$deployment"
  checks=$((checks + 1))
  if kill -0 "$second" 2>/dev/null; then echo "FAIL stop: $second still runs"; failures=$((failures + 1)); fi
fi

echo "$((checks - failures)) passed, $failures failed"
[ "$failures" = 0 ]
