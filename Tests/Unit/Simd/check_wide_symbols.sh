#!/usr/bin/env bash
# No code built for the wide vector unit may serve the whole program: of two copies of an inline function the linker keeps either one, and a
# processor without that unit would stop at it. So the objects built for it share nothing but their kernels.
#
#   check_wide_symbols.sh OBJECT...     objects named otherwise than *.avx2.* are passed over
set -euo pipefail

wide=()
for object in "$@"; do
	case "$object" in *.avx2.*) wide+=("$object") ;; esac
done
if [ ${#wide[@]} -eq 0 ]; then
	echo "no objects are built for the wide vector unit" >&2
	exit 1
fi
if nm -C --defined-only "${wide[@]}" | grep -E ' [WVu] ' | grep -vF '(zortexture::ESimdLevel)2'; then
	echo "these are shared with the rest of the program (of the objects ${wide[*]})" >&2
	exit 1
fi
