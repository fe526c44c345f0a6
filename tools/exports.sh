#!/usr/bin/env bash
# Writes down what the DLL exports, for tests/api/exports.txt. Look at the difference before you commit it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
MIRA_WRITE_EXPORTS=1 tools/wine.sh build/windows/bin/mira_api_tests.exe '--gtest_filter=Dll.Exports*' >/dev/null
git diff --stat -- tests/api/exports.txt
