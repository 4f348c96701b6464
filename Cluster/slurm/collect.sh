#!/usr/bin/env bash
# Merges the reports of a job array, and names the files that are not converted.
#
#   Cluster/slurm/collect.sh LIST OUT
#
# Writes OUT/.zortex/report.json, and OUT/.zortex/failed.txt: a list for another array of just those files. The exit code is 0 when
# every file of LIST is converted.
set -euo pipefail

if [ $# -ne 2 ]; then
	echo "usage: collect.sh LIST OUT" >&2
	exit 2
fi
mkdir -p "$2/.zortex/reports"
exec "${ZORTEX:-zortex}" collect "$2/.zortex/reports" --list "$1" --report "$2/.zortex/report.json" --failed "$2/.zortex/failed.txt"
