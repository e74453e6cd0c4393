# Reads a disassembly (objdump -d --no-show-raw-insn) and prints every instruction that a processor with AVX and nothing
# newer does not have; ends with failure if there is one. What begins with v must be listed here, for 32-byte registers
# apart from 16-byte ones, since AVX has no integer arithmetic on 32 bytes; everything else is forbidden by name.

function list(text, into,    words, n, i)
{
    n = split(text, words, " ")
    for (i = 1; i <= n; i++)
        into[words[i]] = 1
}

BEGIN {
    # floating point, moves and lane shuffles, in both widths
    list("vaddpd vaddps vaddsubpd vaddsubps vandnpd vandnps vandpd vandps vblendpd vblendps vblendvpd " \
         "vblendvps vbroadcastsd vbroadcastss vcvtdq2pd vcvtdq2ps vcvtpd2dq vcvtpd2ps vcvtps2dq vcvtps2pd " \
         "vcvttpd2dq vcvttps2dq vdivpd vdivps vdpps vhaddpd vhaddps vhsubpd vhsubps vlddqu vmaskmovpd " \
         "vmaskmovps vmaxpd vmaxps vminpd vminps vmovapd vmovaps vmovddup vmovdqa vmovdqu vmovmskpd vmovmskps " \
         "vmovntdq vmovntpd vmovntps vmovshdup vmovsldup vmovupd vmovups vmulpd vmulps vorpd vorps vpermilpd " \
         "vpermilps vptest vrcpps vroundpd vroundps vrsqrtps vshufpd vshufps vsqrtpd vsqrtps vsubpd vsubps " \
         "vtestpd vtestps vunpckhpd vunpckhps vunpcklpd vunpcklps vxorpd vxorps", wide)
    list("vbroadcastf128 vextractf128 vinsertf128 vperm2f128 vcvtpd2psy vcvtpd2dqy vcvttpd2dqy", wide)
    for (name in wide)
        narrow[name] = 1
    # scalars, and integers of 16 bytes
    list("vzeroupper vzeroall vldmxcsr vstmxcsr vaddsd vaddss vcomisd vcomiss vcvtsd2si vcvtsd2ss vcvtsi2sd " \
         "vcvtsi2sdl vcvtsi2sdq vcvtsi2ss vcvtsi2ssl vcvtsi2ssq vcvtss2sd vcvtss2si vcvttsd2si vcvttss2si " \
         "vcvtpd2psx vcvtpd2dqx vcvttpd2dqx vdivsd vdivss vdppd vextractps vinsertps vmaskmovdqu vmaxsd vmaxss " \
         "vminsd vminss vmovd vmovhlps vmovhpd vmovhps vmovlhps vmovlpd vmovlps vmovntdqa vmovq vmovsd vmovss " \
         "vmpsadbw vmulsd vmulss vpabsb vpabsd vpabsw vpackssdw vpacksswb vpackusdw vpackuswb vpaddb vpaddd " \
         "vpaddq vpaddsb vpaddsw vpaddusb vpaddusw vpaddw vpalignr vpand vpandn vpavgb vpavgw vpblendvb " \
         "vpblendw vpcmpestri vpcmpestrm vpcmpistri vpcmpistrm vpextrb vpextrd vpextrq vpextrw vphaddd " \
         "vphaddsw vphaddw vphminposuw vphsubd vphsubsw vphsubw vpinsrb vpinsrd vpinsrq vpinsrw vpmaddubsw " \
         "vpmaddwd vpmaxsb vpmaxsd vpmaxsw vpmaxub vpmaxud vpmaxuw vpminsb vpminsd vpminsw vpminub vpminud " \
         "vpminuw vpmovmskb vpmovsxbd vpmovsxbq vpmovsxbw vpmovsxdq vpmovsxwd vpmovsxwq vpmovzxbd vpmovzxbq " \
         "vpmovzxbw vpmovzxdq vpmovzxwd vpmovzxwq vpmuldq vpmulhrsw vpmulhuw vpmulhw vpmulld vpmullw vpmuludq " \
         "vpor vpsadbw vpshufb vpshufd vpshufhw vpshuflw vpsignb vpsignd vpsignw vpslld vpslldq vpsllq vpsllw " \
         "vpsrad vpsraw vpsrld vpsrldq vpsrlq vpsrlw vpsubb vpsubd vpsubq vpsubsb vpsubsw vpsubusb vpsubusw " \
         "vpsubw vpunpckhbw vpunpckhdq vpunpckhqdq vpunpckhwd vpunpcklbw vpunpckldq vpunpcklqdq vpunpcklwd " \
         "vpxor vrcpss vroundsd vroundss vrsqrtss vsqrtsd vsqrtss vsubsd vsubss vucomisd vucomiss", narrow)
    # comparisons carry their predicate in the name
    predicates = "^vcmp(eq|lt|le|unord|neq|nlt|nle|ord|nge|ngt|false|ge|gt|true)(_[a-z]+)?(ps|pd|ss|sd)$"
    # BMI, LZCNT, MOVBE, ADX, and what the later levels and their neighbours bring without a v
    list("andn bextr blsi blsmsk blsr bzhi lzcnt mulx pdep pext rorx sarx shlx shrx tzcnt movbe adcx adox " \
         "rdrand rdseed sha1rnds4 sha1nexte sha1msg1 sha1msg2 sha256rnds2 sha256msg1 sha256msg2 clflushopt " \
         "clwb prefetchwt1 xsavec rdpid movdiri movdir64b", forbidden)
}

/^[0-9a-f]+ <.*>:$/ { where = $2; next }

# the disassemblers of the two compilers differ in their blanks
/^ *[0-9a-f]+:[ \t]/ {
    text = $0
    sub(/^ *[0-9a-f]+:/, "", text)
    gsub(/[ \t]+/, " ", text)
    sub(/^ /, "", text)
    sub(/ *(#|<).*$/, "", text)
    while (match(text, /^(rep|repz|repnz|lock|notrack|bnd|data16|cs|ds|es|fs|gs|ss|addr32) /))
        text = substr(text, RLENGTH + 1)
    name = text
    sub(/ .*$/, "", name)
    if (name == "")
        next
    seen++
    bare = name
    sub(/[lqw]$/, "", bare)

    bad = 0
    if (text ~ /%zmm|%[xy]mm(1[6-9]|2[0-9]|3[01])|%k[0-7]/ || text ~ /\{1to/)
        bad = 1
    else if (name ~ /^v/ && name !~ /^(verr|verw|vmcall|vmrun)$/) {
        if (name ~ predicates || name ~ /^vpcmp(eq|gt)[bwdq]$/ || name ~ /^vcmp(ps|pd|ss|sd)$/)
            bad = name ~ /^vpcmp/ && text ~ /%ymm/
        else if (text ~ /%ymm/)
            bad = !(name in wide)
        else
            bad = !(name in narrow)
        # a register as the source of a broadcast came later than memory as the source
        if (name ~ /^vbroadcasts[sd]$/ && text !~ /\(/)
            bad = 1
    } else if (name in forbidden || bare in forbidden)
        bad = 1
    if (bad) {
        found++
        print where " " text
    }
}

END {
    if (seen == 0) {
        print "no instructions were read"
        exit 2
    }
    exit found > 0
}
