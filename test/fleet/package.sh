#!/bin/sh
# Part of script/fleet-test: the firmware packages, a good one and two bad ones.

make_package() {
    say 'making packages'
    mkdir "$WORK/image"
    cp "demo/package/varn-$RELEASE.bin" "$WORK/image"
    make_key "$WORK/maker" maker
    make_key "$WORK/stranger" stranger
    printf 'maker namespaces="varnmenu-package" %s\n' "$(cat "$WORK/maker.pub")" >"$WORK/signers"
    create_package package maker
    create_package forged stranger
    create_package damaged maker
    printf x | dd of="$WORK/damaged.tar" bs=1 seek=5000 conv=notrunc status=none
}

# create_package NAME KEY
create_package() {
    "$PACKAGE_TOOL" create --tool build/release/varnmenu --core test/fleet/varnflash \
        --image "$WORK/image/varn-$RELEASE.bin" --documents demo/package --release "$RELEASE" \
        --sdr 3.07 --system 'SV 1000' --output "$WORK/$1" --sign "$WORK/$2"
}
