# Sourced by bench/run --openwbem PREFIX, not run: the same requests to
# cimhost and to that install's owcimomd, each hosting the module built from
# the same source on its own device state seeded as a configured device,
# both asking for simple authentication (owuser/owpass). Writes
# $WORK/side.md, using bench/run's request_body, key and field. Server CPU
# is the whole process's utime + stime from /proc/PID/stat (exited threads
# included) over the row.
source "$ROOT/scripts/cross.sh"
source "$ROOT/scripts/openwbem-module.sh"

prepare_openwbem "$OPENWBEM" "" bench >/dev/null
trap 'stop_owcimomd; cleanup' EXIT

SIDE_USER=owuser SIDE_PASSWORD=owpass
SIDE_AUTHORIZATION="Basic $(printf '%s:%s' "$SIDE_USER" "$SIDE_PASSWORD" | base64)"

# The two servers, each on a state of its own.
for server in cimhost owcimomd; do
  mkdir -p "$WORK/side-$server"
  CDR_BENCH_SEED_ROOT="$WORK/side-$server" "$BUILD_DIR/bin/cdr_module_bench"
done
printf '%s:%s\n' "$SIDE_USER" "$(openssl passwd -6 "$SIDE_PASSWORD")" >"$WORK/side-auth"
ZPO_ROOT="$WORK/side-cimhost" "$BUILD_DIR/bin/cimhost" --provider "$BUILD_DIR/lib/CDRProvider.so" \
  --mof "$ROOT/CDR/CDROAM/mof/QTX_CDR.mof" --listen 127.0.0.1:0 --auth-file "$WORK/side-auth" \
  --series "$SERIES" --log "$WORK/side-cimhost.log" >/dev/null 2>&1 &
SIDE_CIMHOST_PID=$!
SIDE_CIMHOST_PORT=""
for _ in $(seq 200); do
  SIDE_CIMHOST_PORT="$(sed -n 's/.*listening on 127\.0\.0\.1:\([0-9]*\).*/\1/p' "$WORK/side-cimhost.log" 2>/dev/null | head -1 || true)"
  [[ -n "$SIDE_CIMHOST_PORT" ]] && break
  sleep 0.05
done
[[ -n "$SIDE_CIMHOST_PORT" ]] || { cat "$WORK/side-cimhost.log"; exit 1; }
trap 'kill "$SIDE_CIMHOST_PID" 2>/dev/null || true; stop_owcimomd; cleanup' EXIT
SIDE_OWCIMOMD_PORT=$(free_port)
"$ROOT/scripts/owcimomd" start "$DEPLOYMENT" "$SIDE_OWCIMOMD_PORT" "$WORK/side-owcimomd" "$RUN/log/owcimomd.log"
SIDE_OWCIMOMD_PID=$(cat "$DEPLOYMENT/owcimomd.current-pid")

rss_kb() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status"; }
# Microseconds of CPU the whole process has used, its exited threads included.
process_cpu_us() {
  awk -v hz="$(getconf CLK_TCK)" '{ sub(/^.*\) /, ""); printf "%.0f", ($12 + $13) * 1000000 / hz }' "/proc/$1/stat"
}

# The first request that reaches the module makes owcimomd load it.
OWCIMOMD_RSS_IDLE=$(rss_kb "$SIDE_OWCIMOMD_PID")

# side_wrk SERVER CONNECTIONS CLOSE REQUESTS [SECONDS] -> the RESULT line with
# cpu_us (server CPU per request) appended
side_wrk() {
  local server=$1 connections=$2 close=$3 requests=$4 seconds=${5:-$WRK_SECONDS} pid port before after line count
  if [[ $server == cimhost ]]; then pid=$SIDE_CIMHOST_PID port=$SIDE_CIMHOST_PORT
  else pid=$SIDE_OWCIMOMD_PID port=$SIDE_OWCIMOMD_PORT; fi
  before=$(process_cpu_us "$pid")
  CIMXML_REQUESTS="$requests" CIMXML_CLOSE="$close" CIMXML_AUTHORIZATION="$SIDE_AUTHORIZATION" \
    wrk -t1 -c"$connections" -d"${seconds}s" -s "$BENCH_DIR/cimxml.lua" "http://127.0.0.1:$port" >"$WORK/side-wrk.out"
  after=$(process_cpu_us "$pid")
  line=$(grep '^RESULT' "$WORK/side-wrk.out")
  count=$(sed 's/.* requests=\([0-9]*\).*/\1/' <<<"$line")
  echo "$line cpu_us=$(awk -v t=$((after - before)) -v n="$count" 'BEGIN { printf "%.0f", n ? t / n : 0 }')"
}

# The process's CPU is counted in clock ticks (10 ms at CLK_TCK 100): a row
# of 46 requests, owcimomd's keep-alive rate, would give its CPU per request
# in steps of over 200 µs. A row with fewer than SIDE_MIN_REQUESTS requests is
# run again for as long as that many take at its rate (at most
# SIDE_MAX_SECONDS), so a step is a few percent of the figure at most.
SIDE_MIN_REQUESTS=${SIDE_MIN_REQUESTS:-500}
SIDE_MAX_SECONDS=${SIDE_MAX_SECONDS:-30}
side_row() {  # SERVER CONNECTIONS CLOSE REQUESTS -> as side_wrk
  local line count seconds
  line=$(side_wrk "$@")
  count=$(sed 's/.* requests=\([0-9]*\).*/\1/' <<<"$line")
  if ((count < SIDE_MIN_REQUESTS)); then
    seconds=$(awk -v n="$count" -v s="$WRK_SECONDS" -v want="$SIDE_MIN_REQUESTS" -v most="$SIDE_MAX_SECONDS" \
      'BEGIN { t = n ? int(want * s / n) + 1 : most; print (t > most ? most : t) }')
    line=$(side_wrk "$@" "$seconds")
  fi
  echo "$line"
}

SIDE_REQUESTS=("GetInstance QTX_CDRService|GetInstance=$WORK/gi-service.xml"
  "EnumerateInstances QTX_CDRService|EnumerateInstances=$WORK/ei-QTX_CDRService.xml"
  "EnumerateInstances QTX_CDRServicePrefixBin|EnumerateInstances=$WORK/ei-QTX_CDRServicePrefixBin.xml"
  "EnumerateInstanceNames QTX_CDRServicePrefixBin|EnumerateInstanceNames=$WORK/ein-prefix.xml"
  "ModifyInstance QTX_CDRService DigitsLimit|ModifyInstance=$WORK/mi-16.xml,ModifyInstance=$WORK/mi-20.xml")

# The module's in-process CPU for each request's calls: owcimomd's CPU over
# it is the most a host could reach per CPU-second if it cost nothing.
declare -A SIDE_MODULE_US=(
  ["GetInstance QTX_CDRService"]=$(module_cpu getInstance/QTX_CDRService)
  ["EnumerateInstances QTX_CDRService"]=$(module_cpu enumInstances/QTX_CDRService)
  ["EnumerateInstances QTX_CDRServicePrefixBin"]=$(module_cpu enumInstances/QTX_CDRServicePrefixBin)
  ["EnumerateInstanceNames QTX_CDRServicePrefixBin"]=$(module_cpu enumInstanceNames/QTX_CDRServicePrefixBin)
  ["ModifyInstance QTX_CDRService DigitsLimit"]=$(module_cpu "getInstance/QTX_CDRService+modifyInstance/QTX_CDRService/one property"))

echo "== side by side: cimhost and owcimomd $VERSION ($SERIES series) =="
for server in cimhost owcimomd; do  # warm-up; the module then holds each registry open
  side_wrk "$server" 1 0 "${SIDE_REQUESTS[0]#*|}" >/dev/null
  warm_registry "$WORK/side-$server"
done
OWCIMOMD_RSS_LOADED=$(rss_kb "$SIDE_OWCIMOMD_PID")
: >"$WORK/side.tsv"
for entry in "${SIDE_REQUESTS[@]}"; do
  for mode in "keep-alive 1" "new 1" "new 4"; do
    read -r kind connections <<<"$mode"
    close=$([[ $kind == new ]] && echo 1 || echo 0)
    ours=$(side_row cimhost "$connections" "$close" "${entry#*|}")
    theirs=$(side_row owcimomd "$connections" "$close" "${entry#*|}")
    echo "${entry%%|*}, $kind, $connections: cimhost $ours | owcimomd $theirs"
    printf '%s\t%s\t%s\t%s\t%s\n' "${entry%%|*}" "$kind" "$connections" "$ours" "$theirs" >>"$WORK/side.tsv"
  done
done

# The module's footprint: stripped size, and what loading it added to
# owcimomd's resident memory.
stripped_kb() {  # FILE [STRIP]
  "${2:-strip}" -o "$WORK/stripped.so" "$1" && echo $(( $(stat -c %s "$WORK/stripped.so") / 1024 ))
}
MODULE_X86_KB=$(stripped_kb "$BUILD_DIR/lib/CDRProvider.so")
MODULE_ARMHF="not built (build-armhf/, scripts/test --arch armhf)"
if [[ -f $ROOT/build-armhf/lib/CDRProvider.so ]] && command -v arm-linux-gnueabihf-strip >/dev/null; then
  MODULE_ARMHF="$(stripped_kb "$ROOT/build-armhf/lib/CDRProvider.so" arm-linux-gnueabihf-strip) KiB"
fi
OW_PROVIDER_KB=$(for f in "$DEPLOYMENT"/providers/*.so; do
  [[ $(basename "$f") == libCDRProvider.so ]] || stripped_kb "$f"; done | sort -n | sed -n '1p;$p' | paste -sd- -)

{
  echo "### Side by side with owcimomd $VERSION ($SERIES series)"
  echo
  echo "The same requests, one wrk thread, ${WRK_SECONDS} s per row and server (a row of fewer than"
  echo "$SIDE_MIN_REQUESTS requests runs again for as long as that many take, at most ${SIDE_MAX_SECONDS} s); both ask for simple"
  echo "authentication (owuser/owpass), owcimomd logs errors only, cimhost runs with \`--series $SERIES\`."
  echo "CPU is the server process's utime + stime per request. \"Per CPU-second\" is how many more"
  echo "requests cimhost serves per CPU-second (owcimomd's CPU per request over cimhost's); \"bound\""
  echo "is what a host costing nothing would reach: owcimomd's CPU over the module's in-process CPU"
  echo "for the request's calls. Target: 3 per CPU-second for GetInstance, EnumerateInstances and"
  echo "ModifyInstance."
  echo
  echo "| request | connection | conns | cimhost req/s | p50 / p99 ms | CPU µs | owcimomd req/s | p50 / p99 ms | CPU µs | req/s ratio | per CPU-second | bound | met |"
  echo "|---|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---|"
  while IFS=$'\t' read -r label kind connections ours theirs; do
    judged=$([[ $label == EnumerateInstanceNames* ]] && echo 0 || echo 1)
    awk -v l="$label" -v k="$kind" -v c="$connections" -v m="${SIDE_MODULE_US[$label]:-0}" -v j="$judged" \
      -v r1="$(field rps "$ours")" -v a1="$(field p50_us "$ours")" -v b1="$(field p99_us "$ours")" -v u1="$(field cpu_us "$ours")" -v f1="$(field failed "$ours")" \
      -v r2="$(field rps "$theirs")" -v a2="$(field p50_us "$theirs")" -v b2="$(field p99_us "$theirs")" -v u2="$(field cpu_us "$theirs")" -v f2="$(field failed "$theirs")" \
      'BEGIN {
        n1 = f1 > 0 ? sprintf(" (%d failed)", f1) : ""; n2 = f2 > 0 ? sprintf(" (%d failed)", f2) : ""
        ratio = r2 > 0 ? r1 / r2 : 0; perCpu = u1 > 0 ? u2 / u1 : 0; bound = m > 0 ? u2 / m : 0
        met = j ? (perCpu >= 3 && f1 == 0 ? "yes" : "no") : "-"
        printf "| %s | %s | %s | %.0f%s | %.2f / %.2f | %d | %.0f%s | %.2f / %.2f | %d | %.2f | %.2f | %.2f | %s |\n", l, k, c, r1, n1, a1 / 1000, b1 / 1000, u1, r2, n2, a2 / 1000, b2 / 1000, u2, ratio, perCpu, bound, met
      }'
  done <"$WORK/side.tsv"
  echo
  echo "| footprint | |"
  echo "|---|---:|"
  echo "| CDRProvider.so stripped, x86-64 | $MODULE_X86_KB KiB |"
  echo "| CDRProvider.so stripped, armhf | $MODULE_ARMHF |"
  echo "| OpenWBEM's own providers stripped, smallest-largest | $OW_PROVIDER_KB KiB |"
  echo "| owcimomd resident memory before the module was loaded / after | $OWCIMOMD_RSS_IDLE / $OWCIMOMD_RSS_LOADED KiB |"
} >"$WORK/side.md"
kill "$SIDE_CIMHOST_PID" 2>/dev/null || true
stop_owcimomd
