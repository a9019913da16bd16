#!/usr/bin/env bash
# Checks of what Tarn installs: the man page documents every verb and option the binary has, the
# bash completion offers them, the installed tree holds every file and passes the desktop's own
# validators, and the Debian package names its library dependencies.
# Usage: packaging_test.sh man-coverage|completion|install|deb ARGS...  (exit 77: skipped)
set -euo pipefail

fail() {
    echo "FAIL: $*" >&2
    failed=1
}
failed=0
# Temporary folders live under one root removed at exit.
scratch_root=$(mktemp -d)
trap 'rm -rf "$scratch_root"' EXIT
new_scratch() {
    mktemp -d -p "$scratch_root"
}
skip() {
    echo "SKIP: $*"
    exit 77
}

# The verbs `tarn-cli --help` lists.
verbs_of() {
    "$1" --help | awk '/^Subcommands:/ { on = 1; next } on && /^  [a-z]/ { print $1 }'
}

# The long options `tarn-cli VERB --help` lists, --help excepted.
options_of() {
    "$1" "$2" --help | awk '/^Options:/ { on = 1; next } on' |
        grep -oE -- '--[a-z][a-z0-9-]*' | grep -vx -- '--help' | sort -u
}

# The nine file kinds the desktop learns about: glob and MIME type, one pair a line.
mime_pairs() {
    xmllint --xpath '//*[local-name()="mime-type"]/@type | //*[local-name()="glob"]/@pattern' "$1" |
        sed -E 's/ *(type|pattern)="([^"]*)"/\2\n/g' | sed '/^$/d' | paste - -
}

man_coverage() {
    local cli=$1 src=$2
    local verbs
    verbs=$(verbs_of "$cli")
    [[ -n $verbs ]] || fail "tarn-cli --help lists no verb"
    for verb in $verbs; do
        grep -q "^\*$verb\* " "$src" || fail "the man page has no entry for the verb '$verb'"
        for opt in $(options_of "$cli" "$verb"); do
            grep -qF -- "*$opt*" "$src" || fail "the man page does not document '$verb $opt'"
        done
    done
    for section in "EXIT STATUS" "FILE KINDS" "EXAMPLES"; do
        grep -q "^# $section" "$src" || fail "the man page has no $section section"
    done
    for ext in prl txt json mspl mlpl ehplmn oplmn uplmn Bst3Gpp tot laf; do
        grep -qF "*\\*.$ext*" "$src" || fail "the man page does not name the file kind .$ext"
    done
}

completion() {
    local cli=$1 script=$2 dir
    dir=$(new_scratch)
    # shellcheck source=/dev/null
    source "$script"
    complete_line() {  # the words of a command line whose last word is being completed
        COMP_WORDS=("$@")
        COMP_CWORD=$(($# - 1))
        COMP_LINE="$*"
        COMP_POINT=${#COMP_LINE}
        COMPREPLY=()
        _tarn_cli tarn-cli "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        printf '%s\n' "${COMPREPLY[@]}" | sort
    }
    local got verbs
    verbs=$(complete_line "$cli" "")
    for verb in $(verbs_of "$cli"); do
        grep -qx "$verb" <<<"$verbs" || fail "completion does not offer the verb '$verb'"
        got=$(complete_line "$cli" "$verb" "--")
        for opt in $(options_of "$cli" "$verb"); do
            grep -qx -- "$opt" <<<"$got" || fail "completion does not offer '$verb $opt'"
        done
    done
    got=$(complete_line "$cli" convert x.prl --to "")
    [[ $got == $'IS-683A\nIS-683B\nIS-683C\nIS-683D\nIS-683E' ]] ||
        fail "completion of --to offers: $got"
    touch "$dir/list.prl" "$dir/list.mspl" "$dir/list.Bst3Gpp" "$dir/notes.odt"
    mkdir "$dir/sub"
    got=$(cd "$dir" && complete_line "$cli" check "")
    [[ $got == $'list.Bst3Gpp\nlist.mspl\nlist.prl\nsub' ]] || fail "check completes files as: $got"
    got=$(cd "$dir" && complete_line "$cli" join "")
    [[ $got == $'list.prl\nsub' ]] || fail "join completes files as: $got"
}

install_tree() {
    local build=$1 gui=$2 dest
    dest=$(new_scratch)
    cmake --install "$build" --prefix "$dest/usr" >/dev/null
    local id=com.example.halvane.Tarn
    local want=(usr/bin/tarn-cli usr/share/man/man1/tarn-cli.1.gz
        usr/share/bash-completion/completions/tarn-cli usr/share/doc/tarn/README.md)
    if [[ $gui == ON ]]; then
        want+=(usr/bin/tarn usr/share/man/man1/tarn.1.gz "usr/share/applications/$id.desktop"
            "usr/share/mime/packages/$id.xml" "usr/share/icons/hicolor/scalable/apps/$id.svg"
            "usr/share/metainfo/$id.metainfo.xml")
    fi
    for f in "${want[@]}"; do
        [[ -f $dest/$f ]] || fail "not installed: /$f"
    done
    [[ -x $dest/usr/bin/tarn-cli ]] && "$dest/usr/bin/tarn-cli" --version >/dev/null ||
        fail "the installed tarn-cli does not run"

    for page in "$dest"/usr/share/man/man1/*.1.gz; do
        if command -v groff >/dev/null; then
            local warnings
            warnings=$(zcat "$page" | LC_ALL=C.UTF-8 groff -man -ww -z 2>&1) || true
            [[ -z $warnings ]] || fail "groff warns on $(basename "$page"): $warnings"
        else
            echo "note: groff is not installed; man pages not checked"
        fi
    done
    [[ $gui == ON ]] || return 0

    if command -v desktop-file-validate >/dev/null; then
        desktop-file-validate "$dest/usr/share/applications/$id.desktop" ||
            fail "desktop-file-validate refuses the desktop file"
    else
        echo "note: desktop-file-validate is not installed; desktop file not checked"
    fi
    if command -v appstreamcli >/dev/null; then
        appstreamcli validate --no-net "$dest/usr/share/metainfo/$id.metainfo.xml" ||
            fail "appstreamcli refuses the metainfo"
    else
        echo "note: appstreamcli is not installed; metainfo not checked"
    fi

    # The desktop file, the metainfo and the MIME package name the same nine types.
    local xml=$dest/usr/share/mime/packages/$id.xml types
    types=$(mime_pairs "$xml" | cut -f1 | sort)
    [[ $(wc -l <<<"$types") -eq 9 ]] || fail "the MIME package declares $(wc -l <<<"$types") types"
    local desktop_types
    desktop_types=$(sed -n 's/^MimeType=//p' "$dest/usr/share/applications/$id.desktop" |
        tr ';' '\n' | sed '/^$/d' | sort)
    [[ $desktop_types == "$types" ]] || fail "the desktop file's MimeType differs from the MIME package"
    local meta_types
    meta_types=$(xmllint --xpath '//mediatype/text()' "$dest/usr/share/metainfo/$id.metainfo.xml" |
        sort)
    [[ $meta_types == "$types" ]] || fail "the metainfo's mediatypes differ from the MIME package"
    local globs
    globs=$(mime_pairs "$xml" | cut -f2 | sort | tr '\n' ' ')
    [[ $globs == "*.Bst3Gpp *.ehplmn *.laf *.mlpl *.mspl *.oplmn *.prl *.tot *.uplmn " ]] ||
        fail "the MIME package globs are: $globs"
    if command -v update-mime-database >/dev/null; then
        # The desktop's own database compiler must accept the package and learn every glob.
        mkdir -p "$dest/mime/packages"
        cp "$xml" "$dest/mime/packages/"
        local log
        log=$(update-mime-database "$dest/mime" 2>&1) ||
            fail "update-mime-database refuses the MIME package: $log"
        while IFS=$'\t' read -r type glob; do
            # Globs match in any case, and the compiler stores them lower-cased.
            grep -qiF ":$type:$glob" "$dest/mime/globs2" ||
                fail "the compiled database does not map $glob to $type"
        done < <(mime_pairs "$xml")
    fi
    return 0
}

deb() {
    local build=$1 gui=$2 out
    for tool in cpack dpkg-deb dpkg-shlibdeps; do
        command -v $tool >/dev/null || skip "$tool is not installed"
    done
    out=$(new_scratch)
    (cd "$build" && cpack -G DEB -B "$out" >"$out/cpack.log" 2>&1) || {
        cat "$out/cpack.log" >&2
        fail "cpack -G DEB failed"
        return
    }
    local pkg
    pkg=$(ls "$out"/*.deb)
    local depends
    depends=$(dpkg-deb -f "$pkg" Depends)
    echo "Depends: $depends"
    grep -q 'libc6' <<<"$depends" || fail "the package does not depend on libc6"
    # Opened on first use, so dpkg-shlibdeps cannot see them: the package must name them itself.
    grep -q 'libxml2' <<<"$depends" || fail "the package does not depend on libxml2"
    grep -q 'libxlsxwriter4' <<<"$depends" || fail "the package does not depend on libxlsxwriter4"
    # Both programs use the system's C++ runtime.
    grep -q 'libstdc++6' <<<"$depends" || fail "the package does not depend on libstdc++6"
    if [[ $gui == ON ]]; then
        grep -q 'libqt6widgets6' <<<"$depends" || fail "the package does not depend on Qt Widgets"
        grep -q 'libqt6network6' <<<"$depends" || fail "the package does not depend on Qt Network"
    fi
    dpkg-deb -c "$pkg" >"$out/contents"
    local want=(./usr/bin/tarn-cli ./usr/share/man/man1/tarn-cli.1.gz ./usr/share/doc/tarn/copyright
                ./usr/share/doc/tarn/changelog.gz)
    [[ $gui == ON ]] && want+=(./usr/bin/tarn ./usr/share/applications/com.example.halvane.Tarn.desktop)
    for f in "${want[@]}"; do
        grep -q " $f\$" "$out/contents" || fail "the package holds no ${f#.}"
    done
    # What a distribution would take: lintian finds no error and no warning.
    if command -v lintian >/dev/null; then
        local tags
        tags=$(lintian --fail-on none "$pkg" 2>&1 | grep -E '^[EW]: ' || true)
        [[ -z $tags ]] || fail "lintian: $tags"
    fi
}

case ${1:-} in
    man-coverage) man_coverage "$2" "$3" ;;
    completion) completion "$2" "$3" ;;
    install) install_tree "$2" "$3" ;;
    deb) deb "$2" "$3" ;;
    *)
        echo "usage: $0 man-coverage|completion|install|deb ARGS..." >&2
        exit 2
        ;;
esac
exit $failed
