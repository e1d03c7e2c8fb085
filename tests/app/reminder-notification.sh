#!/usr/bin/env bash
# A reminder as the player gets it: Event Timer under Xvfb on a private session bus with the
# dunst notification daemon, the clock started five seconds before the reminder of a marked
# event. Checks what dunst showed and that its action put the event's chat link on the
# clipboard. Started by CTest through xvfb-run and dbus-run-session.
#   reminder-notification.sh EVENTTIMER LOCALEVENTSERVICE SAMPLE_DIR
set -euo pipefail
app=$1 service=$2 sample=$3
work=$(mktemp -d)
pids=()
cleanup() {
  kill "${pids[@]}" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
waitfor() { # seconds, command..., tried every tenth of a second
  local tries=$(($1 * 10)); shift
  for _ in $(seq "$tries"); do "$@" && return 0; sleep 0.1; done
  return 1
}

# Its own defaults, whatever the machine's dunstrc says.
: >"$work/dunstrc"
dunst -config "$work/dunstrc" >"$work/dunst.log" 2>&1 & pids+=($!)
"$service" "$sample/events.json" --files "$sample" >"$work/service.out" & pids+=($!)
waitfor 10 test -s "$work/service.out"
mkdir -p "$work/config/tolmerkvarn" "$work/run"
chmod 700 "$work/run"
cat >"$work/config/tolmerkvarn/eventtimer.conf" <<CONF
[General]
event_service_url=$(head -n 1 "$work/service.out")
[reminders]
events=Marsh Leviathan
lead_minutes=5
CONF

# Marsh Leviathan is due at 01:20 UTC; its reminder falls at 01:15.
env QT_QPA_PLATFORM=xcb TZ=UTC EVENTTIMER_NOW=2026-11-22T01:14:55 \
  XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache" XDG_DATA_HOME="$work/data" \
  XDG_RUNTIME_DIR="$work/run" "$app" >"$work/app.out" 2>&1 & pids+=($!)
shown() { [ "$(dunstctl count displayed)" -ge 1 ]; }
if ! waitfor 30 shown; then
  echo "no notification was shown"; cat "$work/app.out" "$work/dunst.log"; exit 1
fi

link=$(jq -r '.varn_global_events_sequence as $names | .varn_global_events_chatlinks
  [$names | index("Marsh Leviathan")]' "$work/data/tolmerkvarn.eventtimer/suite.json")
copied() { [ "$(xclip -o -selection clipboard 2>/dev/null)" = "$link" ]; }
dunstctl action 0
waitfor 10 copied || {
  echo "the clipboard holds '$(xclip -o -selection clipboard 2>/dev/null)', not $link"; exit 1; }

dunstctl close-all
history=$(dunstctl history)
jq -e '.data[0][0] | .summary.data == "Marsh Leviathan in 5 min"
  and .body.data == "Roaming Bosses, 01:20" and .appname.data == "Event Timer"' \
  <<<"$history" >/dev/null || { echo "dunst received: $history"; exit 1; }
echo "dunst showed the reminder, and its action copied $link"
