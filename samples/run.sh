#!/usr/bin/env bash
# run.sh [BUILD]: shows the samples: the character played by its script, then by a host of its own.
# BUILD is the folder of a build that is done, build/dev without it.
set -euo pipefail
cd "$(dirname "$0")/.."
bin=${1:-build/dev}/bin

echo "== samples/character.json, driven by samples/character.script"
"$bin/vell" run samples/character.json --script samples/character.script
echo
echo "== samples/host: what an animation system would play"
"$bin/sample_host" samples/character.json 2>/dev/null
