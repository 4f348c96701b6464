#!/usr/bin/env bash
# Runs the example programs of a folder and compares what they print and leave.
#
#   check_examples.sh PROGRAMS SCRATCH
set -euo pipefail
programs=$1
scratch=$2
mkdir -p "$scratch"

# expect PATTERN PROGRAM ARGUMENT...: the program succeeds, and its text has a line of the pattern.
expect() {
	local pattern=$1 program=$2
	shift 2
	"$programs/$program" "$@" >"$scratch/text"
	grep -Eqx "$pattern" "$scratch/text" || {
		echo "$program $*: no line '$pattern' in:"
		cat "$scratch/text"
		exit 1
	}
}

# refuse PROGRAM ARGUMENT...: exit code 1 and a line on standard error.
refuse() {
	local code=0
	"$programs/$1" "${@:2}" >/dev/null 2>"$scratch/text" || code=$?
	[ "$code" = 1 ] && [ "$(wc -l <"$scratch/text")" = 1 ] || {
		echo "$*: exit code $code"
		exit 1
	}
}

expect '7 levels, down to 1 x 1' mip_chain "$scratch/rings.zor"
expect 'level 6: 1 x 1 x 1 pixels, 4 bytes a face' inspect "$scratch/rings.zor"
# 2048 + 512 + 128 + 32 + 3 x 16: the last levels are a block each.
expect '10924 bytes of pixels became 2768' convert "$scratch/rings.zor" "$scratch/rings.ktx"
expect 'for Vulkan: VK_FORMAT_ETC2_R8G8B8A8_SRGB_BLOCK' inspect "$scratch/rings.ktx"
expect 'PSNR: 3[0-9]\.[0-9]{2} dB' measure "$scratch/rings.zor" "$scratch/rings.ktx"
expect 'largest difference: 0' measure "$scratch/rings.ktx" "$scratch/rings.ktx"
expect '384 bytes of pixels in 64 bytes of blocks; the largest difference is [0-9]' encode_blocks
refuse inspect "$scratch/missing.zor"
refuse convert "$scratch/rings.zor" "$scratch/missing/rings.zor"
refuse measure "$scratch/rings.zor" "$scratch/missing.zor"
echo "the examples in $programs do what they say"
