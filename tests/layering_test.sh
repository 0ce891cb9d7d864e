#!/bin/sh
# Fails on an include that runs against the layers, or on a toolkit header outside its folder.
# Usage: layering_test.sh SOURCE_FOLDER
cd "$1/src" || exit 2
status=0

# forbid FOLDER PATTERN: no file of the folder includes a header whose path matches.
forbid() {
  if grep -rnE "#include \"($2)/" "$1" --include='*.h' --include='*.cpp'; then
    echo "src/$1 must not include from: $2" >&2
    status=1
  fi
}
above_engine='security|query|interchange|services|screens|shell|cli|app'
forbid engine "$above_engine|platform/(std|qt)"
forbid security 'query|interchange|services|screens|shell|cli|app|platform/(std|qt)'
forbid query 'interchange|services|screens|shell|cli|app|platform/(std|qt)'
forbid interchange 'services|screens|shell|cli|app|platform/(std|qt)'
forbid services 'screens|shell|cli|app|platform/(std|qt)'
forbid screens 'shell|cli|app|platform/(std|qt)'
forbid shell 'cli|app|platform/(std|qt)'
forbid cli 'screens|shell|app|platform/qt'
forbid platform "engine|$above_engine"

if grep -rnE '#include *[<"]Q' . --include='*.h' --include='*.cpp' | grep -vE '^\./(platform/qt|app)/'; then
  echo "Qt headers belong to src/platform/qt and src/app" >&2
  status=1
fi
exit $status
