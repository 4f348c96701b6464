/// @file LegacyFormatTables.h
/// The numbers of old native files as plain numbers, formats written as in FormatMapTables.h.
#pragma once

namespace zortexture
{
/// What a number means: channel type, colour space, premultiplied; then numbers=format. All others mean nothing.
inline constexpr const char* kLegacyReadText = R"(
0 0 0 7=i8 9,124,156=#18 10,70=#17 11,69=#16 12,24=#1 13,25=#3 28=#5 29=#4 54=#6 126=#20 127=#21
0 0 0 21=rgb8.8.8 22,154=l8 23=la8.8 27,155=a8 110=rg8.8 119,123=r8 18,97,152=rgba8.8.8.8 26,172=bgra8.8.8.8
0 0 0 151=rgbx8.8.8.8 162=xrgb8.8.8.8 163=argb8.8.8.8 171=bgrx8.8.8.8 179=xbgr8.8.8.8 180=abgr8.8.8.8
0 0 1 153=rgba8.8.8.8 164=argb8.8.8.8 173=bgra8.8.8.8 181=abgr8.8.8.8
0 1 0 98,145=rgba8.8.8.8 144=rgbx8.8.8.8 150=l8 157=xrgb8.8.8.8 158=argb8.8.8.8
0 1 0 165=bgrx8.8.8.8 166=bgra8.8.8.8 174=xbgr8.8.8.8 175=abgr8.8.8.8
0 1 1 146=rgba8.8.8.8 159=argb8.8.8.8 167=bgra8.8.8.8 176=abgr8.8.8.8
1 0 0 100=rgba8.8.8.8 112=rg8.8 121=r8
2 0 0 99=rgba8.8.8.8 111=rg8.8 120=r8
3 0 0 101=rgba8.8.8.8 113=rg8.8 122=r8
4 0 0 0=argb4.4.4.4 1=argb1.5.5.5 2,19=rgb5.6.5 3=xrgb1.5.5.5 6=argb8.3.3.2 8=ai8.8
4 0 0 16=rgba4.4.4.4 17=rgba5.5.5.1 20=rgbx5.5.5.1 87=rgba16.16.16.16 103=rg16.16 115=r16
4 1 0 147=rgb5.6.5 148=rgba5.5.5.1 149=rgba4.4.4.4 160=argb1.5.5.5 161=argb4.4.4.4
4 1 0 168=bgr5.6.5 169=bgra5.5.5.1 170=bgrx4.4.4.4 177=abgr1.5.5.5 178=xbgr4.4.4.4
5 0 0 89=rgba16.16.16.16 105=rg16.16 117=r16
6 0 0 88=rgba16.16.16.16 104=rg16.16 116=r16
7 0 0 90=rgba16.16.16.16 106=rg16.16 118=r16
8 0 0 4=rgb8.8.8 5=argb8.8.8.8 37=rgb3.3.2 38=al4.4 42=abgr2.10.10.10 43,44=argb2.10.10.10
8 0 0 45=gr16.16 47=abgr16.16.16.16 64=a8 66=l16 67=l8 68=al8.8 94=rgba10.10.10.2
9 0 0 39=lgr6.5.5 40=xlgr8.8.8.8 41=abgr8.8.8.8 46=gr16.16 65=gr8.8
10 0 0 81=rgba32.32.32.32 84=rgb32.32.32 92=rg32.32 95=rgba10.10.10.2 108=r32
11 0 0 82=rgba32.32.32.32 85=rgb32.32.32 93=rg32.32 109=r32
12 0 0 48,114=r16 49=gr16.16 50=abgr16.16.16.16 51,107=r32 52=gr32.32 53=abgr32.32.32.32
12 0 0 80=rgba32.32.32.32 83=rgb32.32.32 86=rgba16.16.16.16 91=rg32.32 102=rg16.16 125=#19
13 0 0 96=bgr10.11.11
)";

/// What a format is written as: APIs, channel type, colour spaces, premultiplied, * for any of them; then numbers=format.
inline constexpr const char* kLegacyWriteText = R"(
124 * * * 24=#0 24=#1 25=#2 25=#3 29=#4 28=#5 54=#6
124 4 * * 20=rgbx5.5.5.1 16=rgba4.4.4.4 19=rgb5.6.5 17=rgba5.5.5.1
124 0 * * 26=bgra8.8.8.8 18=rgba8.8.8.8 21=rgb8.8.8 27=a8 22=i8 23=ai8.8
35 * * * 12=#0 12=#1 13=#2 13=#3 32=#7 33=#8 34=#9 35=#10 36=#11 69=#16 70=#17
35 8 * * 37=rgb3.3.2 2=rgb5.6.5 68=al8.8 45=gr16.16 66=l16 38=al4.4 64=a8 67=l8 3=xrgb1.5.5.5 5=argb8.8.8.8
35 8 * * 43=argb2.10.10.10 42=abgr2.10.10.10 47=abgr16.16.16.16 0=argb4.4.4.4 1=argb1.5.5.5 4=rgb8.8.8 6=argb8.3.3.2
35 9 * * 41=abgr8.8.8.8 44=abgr2.10.10.10 40=xlgr8.8.8.8 65=gr8.8 46=gr16.16 39=lgr6.5.5
35 12 * * 52=rg32.32 50=abgr16.16.16.16 53=abgr32.32.32.32 48=r16 51=r32 49=gr16.16
6 * * * 126=#20 127=#21
6 9 * * 135=#12 137=#13
6 8 0 * 128=#7 130=#9 132=#11
6 8 12 * 129=#7 131=#9 133=#11
6 8 * * 134=#12 136=#13 94=rgba10.10.10.2
6 0 * * 119=r8 97=rgba8.8.8.8 110=rg8.8
6 1 * * 121=r8 100=rgba8.8.8.8 112=rg8.8
6 2 * * 120=r8 99=rgba8.8.8.8 111=rg8.8
6 3 * * 122=r8 101=rgba8.8.8.8 113=rg8.8
6 4 * * 115=r16 87=rgba16.16.16.16 103=rg16.16
6 5 * * 117=r16 89=rgba16.16.16.16 105=rg16.16
6 6 * * 116=r16 88=rgba16.16.16.16 104=rg16.16
6 7 * * 118=r16 90=rgba16.16.16.16 106=rg16.16
6 10 * * 108=r32 92=rg32.32 81=rgba32.32.32.32 95=rgba10.10.10.2 84=rgb32.32.32
6 11 * * 82=rgba32.32.32.32 85=rgb32.32.32 109=r32 93=rg32.32
6 12 * * 102=rg16.16 91=rg32.32 114=r16 107=r32 96=rgb11.11.10 83=rgb32.32.32 86=rgba16.16.16.16 80=rgba32.32.32.32
7 * * * 156=#18
7 0 0 0 155=a8 154=l8 152=rgba8.8.8.8 172=bgra8.8.8.8 163=argb8.8.8.8 162=xrgb8.8.8.8
7 0 0 0 180=abgr8.8.8.8 179=xbgr8.8.8.8 151=rgbx8.8.8.8 171=bgrx8.8.8.8
7 0 0 1 153=rgba8.8.8.8 173=bgra8.8.8.8 164=argb8.8.8.8 181=abgr8.8.8.8
7 0 1 0 150=l8 145=rgba8.8.8.8 166=bgra8.8.8.8 158=argb8.8.8.8 157=xrgb8.8.8.8
7 0 1 0 175=abgr8.8.8.8 174=xbgr8.8.8.8 144=rgbx8.8.8.8 165=bgrx8.8.8.8
7 0 1 1 146=rgba8.8.8.8 167=bgra8.8.8.8 159=argb8.8.8.8 176=abgr8.8.8.8
7 4 1 * 147=rgb5.6.5 168=bgr5.6.5 148=rgba5.5.5.1 169=bgra5.5.5.1 149=rgba4.4.4.4
7 4 1 * 170=bgra4.4.4.4 161=argb4.4.4.4 178=abgr4.4.4.4 160=argb1.5.5.5 177=abgr1.5.5.5
)";

/// What comes back as something else than what went out, where the file's number can show it: number, format and type
/// written (* for any type), format and type read; #51 is no format.
inline constexpr const char* kLegacyAsymmetriesText = R"(
0 argb4.4.4.4 8 argb4.4.4.4 4
1 argb1.5.5.5 8 argb1.5.5.5 4
2 rgb5.6.5 8 rgb5.6.5 4
3 xrgb1.5.5.5 8 xrgb1.5.5.5 4
6 argb8.3.3.2 8 argb8.3.3.2 4
12 #0 * #1 0
13 #2 * #3 0
22 i8 0 l8 0
23 ai8.8 0 la8.8 0
24 #0 * #1 0
25 #2 * #3 0
32 #7 * #51 14
33 #8 * #51 14
34 #9 * #51 14
35 #10 * #51 14
36 #11 * #51 14
44 abgr2.10.10.10 9 argb2.10.10.10 8
52 rg32.32 12 gr32.32 12
96 rgb11.11.10 12 bgr10.11.11 13
128 #7 8 #51 14
129 #7 8 #51 14
130 #9 8 #51 14
131 #9 8 #51 14
132 #11 8 #51 14
133 #11 8 #51 14
134 #12 8 #51 14
135 #12 9 #51 14
136 #13 8 #51 14
137 #13 9 #51 14
170 bgra4.4.4.4 4 bgrx4.4.4.4 4
178 abgr4.4.4.4 4 xbgr4.4.4.4 4
)";
} // namespace zortexture
