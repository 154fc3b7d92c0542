-- wrk script: posts CIM-XML requests to cimhost over keep-alive connections.
--
--   CIMXML_REQUESTS  "<CIMMethod>=<body file>" items separated by ",";
--                    each connection sends them in turn
--   CIMXML_LIMIT     stop each thread after this many responses (optional);
--                    the file CIMXML_DONE is then created, for the caller to
--                    end wrk with SIGINT (wrk itself runs its full duration)
--   CIMXML_CLOSE     when "1", ask for the connection to be closed after
--                    each response (a new connection per request)
--
--   CIMXML_AUTHORIZATION  the Authorization header's value (optional)
--
-- A response that is not HTTP 200 or that carries a CIM error is counted;
-- done() prints one "RESULT" line for bench/run.
--
-- The requests are built in init(), once wrk knows the host: they carry
-- Host, which HTTP/1.1 requires (owcimomd answers 400 without it).

local requests = {}

function init(args)
  local connection = os.getenv("CIMXML_CLOSE") == "1" and "close" or "keep-alive"
  local authorization = os.getenv("CIMXML_AUTHORIZATION")
  for item in string.gmatch(os.getenv("CIMXML_REQUESTS") or "", "[^,]+") do
    local method, path = string.match(item, "^([^=]+)=(.+)$")
    local file = assert(io.open(path, "rb"), "cannot read " .. path)
    local body = file:read("*a")
    file:close()
    local headers = {
      ["Host"] = wrk.headers["Host"] or (wrk.host .. ":" .. wrk.port),
      ["Content-Type"] = "application/xml; charset=\"utf-8\"",
      ["CIMOperation"] = "MethodCall",
      ["CIMMethod"] = method,
      ["CIMObject"] = "root/cimv2",
      ["Connection"] = connection,
    }
    if authorization and authorization ~= "" then headers["Authorization"] = authorization end
    requests[#requests + 1] = wrk.format("POST", "/cimom", headers, body)
  end
  assert(#requests > 0, "CIMXML_REQUESTS names no request")
end

local threads = {}
function setup(thread)
  threads[#threads + 1] = thread
end

local limit = tonumber(os.getenv("CIMXML_LIMIT") or "0")
local next_request = 0
responses = 0
failures = 0

function request()
  next_request = next_request % #requests + 1
  return requests[next_request]
end

function response(status, headers, body)
  responses = responses + 1
  if status ~= 200 or headers["CIMError"] or string.find(body, "<ERROR", 1, true) then
    failures = failures + 1
  end
  if limit > 0 and responses == limit then
    local marker = io.open(os.getenv("CIMXML_DONE") or "/dev/null", "w")
    if marker then marker:close() end
    wrk.thread:stop()
  end
end

function done(summary, latency, requests_done)
  local counted, failed = 0, 0
  for _, thread in ipairs(threads) do
    counted = counted + thread:get("responses")
    failed = failed + thread:get("failures")
  end
  io.write(string.format(
    "RESULT requests=%d seconds=%.3f rps=%.1f mean_us=%.1f p50_us=%d p90_us=%d p99_us=%d max_us=%d responses=%d failed=%d socket_errors=%d\n",
    summary.requests, summary.duration / 1e6, summary.requests / (summary.duration / 1e6), latency.mean,
    latency:percentile(50), latency:percentile(90), latency:percentile(99), latency.max, counted, failed,
    summary.errors.connect + summary.errors.read + summary.errors.write + summary.errors.timeout))
end
