# shellcheck shell=bash
# Completion of the command lines of meshcast and its companions by bash. Installed under the name of
# each program, since bash-completion looks for that. The options are read from --help.

_meshcast_programs() {
    local cur prev words cword
    _init_completion || return
    local program=${words[0]##*/} help=("$1") scenes='@(wrl|wrl.gz|wrz)'
    if [[ $program == geomtool ]]; then
        if ((cword == 1)); then
            mapfile -t COMPREPLY < <(compgen -W 'info export --help --version' -- "$cur")
            return
        fi
        help+=("${words[1]}")
    fi
    case $program$prev in
        vrmltidy-o | vrmlexport--report) _filedir && return ;;
        *--root) _filedir -d && return ;;
        *--format)
            mapfile -t COMPREPLY < <(compgen -W 'glb gltf obj ply stl dae 3mf x3d html png' -- "$cur")
            return
            ;;
        vrmlexport--view)
            mapfile -t COMPREPLY < <(compgen -W 'fit front top left' -- "$cur")
            return
            ;;
        *--segments | *--size | *--background | *--jobs | *--timeout | *--sshlogin | *--max-output) return ;;
    esac
    if [[ $cur == -* ]]; then
        local options
        options=$("${help[@]}" --help 2>/dev/null | grep -oE '^ +(-[a-z], ?)?--?[a-z-]+' | grep -oE -- '--?[a-z-]+')
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    elif [[ $program == meshcast-batch ]]; then
        _filedir -d
    elif [[ $program == geomtool ]]; then
        _filedir geom
    else
        _filedir "$scenes"
    fi
}

# The filter has no arguments.
complete -W '' meshcast
complete -F _meshcast_programs geomtool meshcast-batch vrmlexport vrmltidy
