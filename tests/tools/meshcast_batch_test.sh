#!/bin/bash
# Converts folders of good, dirty, bad, huge and unreadable scenes with awkward names; breaks a run
# off in the middle of a stream, and resumes it.
# Usage: meshcast_batch_test.sh FOLDER_OF_A_PROGRAM...
set -euo pipefail
export PATH
PATH=$(IFS=:; echo "$*"):$PATH
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'echo "failed in line $LINENO" >&2' ERR
cd "$scratch"

# run STATUS ARGUMENT...: what the script says goes to the file said.
run() {
    local status=0
    meshcast-batch "${@:2}" 2>said || status=$?
    [[ $status == "$1" ]] || { echo "status $status, not $1, for: ${*:2}" && cat said; } >&2
    [[ $status == "$1" ]]
}
without_seconds() { cut -f1-6,8- "$1/meshcast-batch.tsv"; }

header='#VRML V1.0 ascii'
mkdir -p "in/in side" in/folder.wrl
printf '%s\nCube { }\n' "$header" |
    tee in/-dash.wrl in/$'new\nline\t\\.WRL' in/two.wrl{,.gz.wrl} | gzip >in/two.wrl.gz
cp in/two.wrl "in/in side/a 'b\" \$(touch pwned) {1} \`touch pwned\`.wrl"
cp in/two.wrl.gz in/packed.wrz
printf '%s\r\nCube { }\r\n' "$header" >in/dirty.wrl
printf '%s\nSeparator { }\n' "$header" >in/empty.wrl
printf 'neither\n' >in/bad.wrl
ln -s nowhere in/dangling.wrl
mkfifo in/pipe.wrl
{
    printf '%s\nGroup {\n' "$header"
    for _ in {1..200}; do
        printf 'Separator { Coordinate3 { point [ '
        seq -f '%.0f 0.25 -1.5,' 1000
        printf '] } IndexedFaceSet { coordIndex [ '
        seq -f '%.0f, 0, 1, -1,' 2 999
        printf '] } }\n'
    done
    printf '}\n'
} >in/huge.wrl

cat >expected <<'END'
file	status	objects	vertices	polygons	repairs	message
-dash.wrl	ok	1	24	6	0	
bad.wrl	refused	0	0	0	0	
dangling.wrl	unreadable	0	0	0	0	not a file that can be read
dirty.wrl	ok	1	24	6	1	
empty.wrl	empty	0	0	0	0	
huge.wrl	ok	200	200000	199600	0	
in side/a 'b" $(touch pwned) {1} `touch pwned`.wrl	ok	1	24	6	0	
new\nline\t\\.WRL	ok	1	24	6	0	
packed.wrz	ok	1	24	6	1	
pipe.wrl	unreadable	0	0	0	0	not a file that can be read
two.wrl	ok	1	24	6	0	
two.wrl.gz	ok	1	24	6	1	
two.wrl.gz.wrl	ok	1	24	6	0	
END
run 1 in whole
without_seconds whole | sed '/^bad/s/[^\t]*$//' | diff expected -
grep -q '^bad.*	is not VRML' whole/meshcast-batch.tsv
awk -F '\t' 'NR > 1 && $7 !~ /^[0-9]+\.[0-9][0-9][0-9]$/ { exit 1 }' whole/meshcast-batch.tsv
meshcast <in/two.wrl | tee cube.geom | cmp - whole/packed.geom
for stream in -dash dirty $'new\nline\t\\' two.wrl two.wrl.gz \
    two.wrl.gz.wrl "in side/a 'b\" \$(touch pwned) {1} \`touch pwned\`"; do
    cmp cube.geom "whole/$stream.geom"
done
[[ $(find whole -type f | wc -l) == 12 && ! -s whole/empty.geom ]] # A newline counts as well.
[[ -z $(find . -name pwned -o -name .meshcast-batch) ]]

# A tidier that stops in the middle of the huge scene while there is a file blocked.
mkdir slow
cat >slow/vrmltidy <<END
#!/bin/bash
if [[ \${!#} == */huge.wrl && -e $scratch/blocked ]]; then
    head -c 1000000 huge.wrl
    echo >>$scratch/blocked
    exec sleep 60
fi
exec $(command -v vrmltidy) "\$@"
END
chmod +x slow/vrmltidy
PATH=$scratch/slow:$PATH
mkdir parts
touch blocked parts/meshcast-batch.tsv
meshcast-batch --jobs 1 in parts 2>said &
until [[ -s blocked ]]; do sleep 0.05; done
run 2 --resume in parts # Another run is at work.
kill -TERM $!
status=0
wait $! || status=$?
[[ $status == 143 && ! -e parts/meshcast-batch.tsv && ! -e parts/huge.geom ]]
[[ $(find parts/.meshcast-batch -type f) == parts/.meshcast-batch/journal ]]
done_before=$(stat -c %i parts/-dash.geom)
rm blocked
printf 'pipe.wrl\tfail' >>parts/.meshcast-batch/journal
run 1 --resume in parts
[[ $(stat -c %i parts/-dash.geom) == "$done_before" ]]
diff <(without_seconds whole) <(without_seconds parts)
diff -r -x meshcast-batch.tsv whole parts

# What has failed is tried again on demand; its old stream goes; a lost stream is made anew.
printf '%s\nCube { }\n' "$header" >in/bad.wrl
rm parts/dirty.geom
run 1 --resume in parts
cmp parts/dirty.geom cube.geom
grep -q '^bad.wrl.refused' parts/meshcast-batch.tsv
run 1 --resume-failed in parts
cmp parts/bad.geom cube.geom
rm in/{dangling,pipe,huge}.wrl
KRA_GEOM_DEBUG=1 run 1 in parts
[[ $(grep -c '	broken	.*offset 912:' parts/meshcast-batch.tsv) == 9 && ! -e parts/bad.geom ]]
run 0 in parts
run 1 --strict in parts
grep -q '^dirty.wrl.refused' parts/meshcast-batch.tsv

# Inlined scenes may lie anywhere below the folder.
printf '%s\nWWWInline { name "../two.wrl" }\n' "$header" >"in/in side/inline.wrl"
run 0 --inline in parts
cmp "parts/in side/inline.geom" cube.geom

# A scene that takes too long; other machines, one of them out of reach, with a shell of their own.
mkdir long far
touch blocked
cp in/two.wrl long/huge.wrl
run 1 --timeout 0.2 long out
grep -q '^huge.wrl.timeout' out/meshcast-batch.tsv
cat >far/ssh <<'END'
#!/bin/sh
[ "$1" = near ] || exit 255
shift
[ "$1" != -- ] || shift
cd / && exec env -i HOME="$HOME" PATH="$FAR_PATH" SHELL=/bin/sh /bin/sh -c "$*"
END
chmod +x far/ssh
FAR_PATH=$PATH KRA_GEOM_WRITE_V2=1 run 0 --sshlogin "$PWD/far/ssh near,$PWD/far/ssh lost" in \
    $'far\n'
[[ $(head -c 4 $'far\n'/two.wrl.geom) == 46MG ]]
diff <(without_seconds $'far\n') <(run 0 in here && without_seconds here)
