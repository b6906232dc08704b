#!/usr/bin/env bash
# Builds Kora-Budget and starts it on the demo district as the full-privilege
# user BUSINESS. The first run creates the district in a per-user folder:
# an SQLite budget database and a sample Kora-Fund installation.
#   KORA_BUILD_DIR  build folder (default: build beside the sources)
#   KORA_DEMO_DIR   demo district folder (default: ~/.local/share/kora-budget/demo)
#   KORA_USER       log-in ID (default BUSINESS; CLERK has few privileges)
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${KORA_BUILD_DIR:-$here/build}
demo=${KORA_DEMO_DIR:-${XDG_DATA_HOME:-$HOME/.local/share}/kora-budget/demo}
user=${KORA_USER:-BUSINESS}

"$here/scripts/install-deps.sh"
"$here/scripts/build-program.sh" "$build"

# A half-made district (an interrupted first run) is made again from scratch.
if [ ! -f "$demo/.complete" ]; then
  echo "Creating the demo district in $demo"
  rm -rf "$demo"
  mkdir -p "$demo"
  "$build/tools/kora-budget-admin/kora-budget-admin" --sqlite "$demo/budget.sqlite" demo --fund-root "$demo/kora"
  printf '[Database]\nBackend=sqlite\n\n[SQLite]\nFile=budget.sqlite\n' >"$demo/budgetdb.ini"
  touch "$demo/.complete"
fi

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display: \$DISPLAY and \$WAYLAND_DISPLAY are unset." >&2
  echo "Run it under a virtual X server instead:  xvfb-run -a ./scripts/run.sh" >&2
  exit 1
fi
exec "$build/app/kora-budget" --config "$demo/budgetdb.ini" "$user" "$demo/kora"
