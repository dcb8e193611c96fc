#!/bin/sh
# Sets up an office's VLAN with a profile of its own. May be run again: what is so already stays. docs/scripting.md
# explains it.
#
#   sh provision.sh        status 0: all is as wanted; else standard error tells what was refused

# nexa CATEGORY SETTING OPTION [PARAMETER ...]: zr_nexa with a status, and without CRs and verdict. nexa_code is the result
# code then: 0x0 for success, none where the command gave no verdict.
nexa() {
    nexa_code=none nexa_said='words are missing'
    [ $# -lt 3 ] || nexa_said=$(zr_nexa "$@" | tr -d '\r')
    case $nexa_said in
    *'CMD OK') nexa_code=0x0 nexa_said=$(printf %s "${nexa_said%CMD OK}") ;;
    *'CMD Error#'*) nexa_code=${nexa_said##*#} ;;
    esac
    [ "$nexa_code" = 0x0 ] || nexa_said="zr_nexa $*: ${nexa_said:-no answer}"
    [ "$nexa_code" = 0x0 ] || { printf '%s\n' "$nexa_said" >&2; return 1; }
    [ -z "$nexa_said" ] || printf '%s\n' "$nexa_said"
}

# already CODE CATEGORY SETTING OPTION [PARAMETER ...]: nexa, for which this refusal means that it is so already.
already() {
    already_code=$1
    shift
    nexa "$@" 2>/dev/null || [ "$nexa_code" = "$already_code" ] || { printf '%s\n' "$nexa_said" >&2; return 1; }
}

# profile TECH_PREF APN_ID: prints the handle of the profile that dials so; adds it where there is none.
profile() {
    list=$(nexa WAN WWANConfig get) || return
    handle=$(printf '%s\n' "$list" | sed -n "s/^wwan_handle:\([0-9]*\)  tech_pref:$1  apn_id:$2\$/\1/p" | head -n 1)
    [ -n "$handle" ] || handle=$(nexa WAN WWANConfig add "$1" "$2") || return
    printf '%s\n' "${handle##* }"
}

# filter LAN_ID PROTOCOL START_PORT END_PORT: keeps these ports with the module.
filter() {
    list=$(nexa LAN IPPTGWFilter get "$1") || return
    printf '%s\n' "$list" | grep -q "protocol: $2 start_port: $3 end_port $4\$" ||
        nexa LAN IPPTGWFilter add "$@"
}

set -eu
nexa LAN VLAN add 10 1 1
nexa LAN DHCP set 10 192.168.11.1 255.255.255.0 192.168.11.20 192.168.11.60 3600
filter 0 2 5000 5010
office=$(profile 1 3)
already 0x3076 WAN MPDNMapping add "$office" 10
already 0x2076 NAT IPV4PortMapping add "$office" 192.168.11.50 80 8080 6
already 0x201a WAN Connect connect "$office" 4
nexa WAN Status get "$office"
