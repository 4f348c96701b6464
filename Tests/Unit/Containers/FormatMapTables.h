/// @file FormatMapTables.h
/// The format maps as plain numbers. One line a format: its layout, or # and its number; then for each channel type, or
/// class of types, the value (for sRGB after a slash, where it differs).
#pragma once

namespace zortexture
{
/// type:format,internal format,type,bytes of the type. Hexadecimal. The base internal format is the format.
inline constexpr const char* kOpenGLUncompressedText = R"(
a8           0:1906,803C,1401,1           1:1906,9014,1400,1
l8           0:1909,8040,1401,1           1:1909,9015,1400,1
la8.8        0:190A,8045,1401,1           1:190A,9016,1400,1
r8           0:1903,8229,1401,1           1:1903,8F94,1400,1  2:8D94,8232,1401,1  3:8D94,8231,1400,1
rg8.8        0:8227,822B,1401,1           1:8227,8F95,1400,1  2:8228,8238,1401,1  3:8228,8237,1400,1
rgb8.8.8     0:1907,8051/8C41,1401,1      1:1907,8F96,1400,1  2:8D98,8D7D,1401,1  3:8D98,8D8F,1400,1
rgba8.8.8.8  0:1908,8058/8C43,1401,1      1:1908,8F97,1400,1  2:8D99,8D7C,1401,1  3:8D99,8D8E,1400,1
bgra8.8.8.8  0:80E1,80E1,1401,1
rgb3.3.2     0:1907,2A10,8032,1
rgba4.4.4.4  0:1908,8056,1401,1           4:1908,8056,8033,2
rgb5.6.5     4:1907,8D62,8363,2
rgba5.5.5.1  4:1908,8057,8034,2
a16          4:1906,803E,1403,2           5:1906,9018,1402,2  12:1906,881C,140B,2
l16          4:1909,8042,1403,2           5:1909,9019,1402,2  12:1909,881E,140B,2
la16.16      4:190A,8048,1403,2           5:190A,901A,1402,2  12:190A,881F,140B,2
r16          4:1903,822A,1403,2           5:1903,8F98,1402,2  6:8D94,8234,1403,2  7:8D94,8233,1402,2  12:1903,822D,140B,2
rg16.16      4:8227,822C,1403,2           5:8227,8F99,1402,2  6:8228,823A,1403,2  7:8228,8239,1402,2  12:8227,822F,140B,2
rgb16.16.16  4:1907,8054,1403,2           5:1907,8F9A,1402,2  6:8D98,8D77,1403,2  7:8D98,8D89,1402,2  12:1907,881B,140B,2
rgba16.16.16.16 4:1908,805B,1403,2        5:1908,8F9B,1402,2  6:8D99,8D76,1403,2  7:8D99,8D88,1402,2  12:1908,881A,140B,2
xbgr2.10.10.10  8:1907,8052,8368,4
abgr2.10.10.10  8:1908,8059,8368,4        10:8D99,906F,8368,4
a32          12:1906,8816,1406,4
l32          12:1909,8818,1406,4
la32.32      12:190A,8819,1406,4
r32          10:8D94,8236,1405,4          11:8D94,8235,1404,4  12:1903,822E,1406,4
rg32.32      10:8228,823C,1405,4          11:8228,823B,1404,4  12:8227,8230,1406,4
rgb32.32.32  10:8D98,8D71,1405,4          11:8D98,8D83,1404,4  12:1907,8815,1406,4
rgba32.32.32.32 10:8D99,8D70,1405,4       11:8D99,8D82,1404,4  12:1908,8814,1406,4
bgr10.11.11  13:1907,8C3A,8C3B,4
)";

/// type:base internal format,internal format. Hexadecimal; the formats' numbers are decimal.
inline constexpr const char* kOpenGLCompressedText = R"(
#0 any:1907,8C01/8A54
#1 any:1908,8C03/8A56
#2 any:1907,8C00/8A55
#3 any:1908,8C02/8A57
#4 any:1908,9137/93F0
#5 any:1908,9138/93F1
#6 any:1907,8D64
#7 any:1907,83F0
#8 any:1908,83F2
#9 any:1908,83F2
#10 any:1908,83F3
#11 any:1908,83F3
#22 any:1907,9274/9275
#23 any:1908,9278/9279
#24 any:1908,9276/9277
#25 signed:1903,9271 unsigned:1903,9270
#26 signed:8227,9273 unsigned:8227,9272
)";

/// Decimal. The 2-D ASTC formats follow as 157 + 2 * (number - 27), one more for sRGB.
inline constexpr const char* kVulkanText = R"(
rgba4.4.4.4 any:2
rgb5.6.5 any:4
rgba5.5.5.1 any:6
argb1.5.5.5 any:8
bgra8.8.8.8 any:44/50
bgr10.11.11 any:122
r8 0:9 1:10 2:13 3:14
rg8.8 0:16 1:17 2:20 3:21
rgb8.8.8 0:23/29 1:24 2:27 3:28
rgba8.8.8.8 0:37/43 1:38 2:41 3:42
r16 4:70 5:71 6:74 7:75 12:76
rg16.16 4:77 5:78 6:81 7:82 12:83
rgba16.16.16.16 4:91 5:92 6:95 7:96 12:97
r32 10:98 11:99 12:100
rg32.32 10:101 11:102 12:103
rgb32.32.32 10:104 11:105 12:106
rgba32.32.32.32 10:107 11:108 12:109
#19 any:123
#7 any:133/134
#8 any:135/136
#9 any:135/136
#10 any:137/138
#11 any:137/138
#22 any:147/148
#24 any:149/150
#23 any:151/152
#25 unsigned:153 signed:154
#26 unsigned:155 signed:156
#0 any:1000054000/1000054004
#1 any:1000054000/1000054004
#2 any:1000054001/1000054005
#3 any:1000054001/1000054005
#4 any:1000054002/1000054006
#5 any:1000054003/1000054007
)";

/// Decimal; FourCC codes in quotes.
inline constexpr const char* kDirect3DText = R"(
#0 any:'TSL2'
#1 any:'TSL2'
#2 any:'TSL4'
#3 any:'TSL4'
#7 any:'DXT1'
#8 any:'DXT2'
#9 any:'DXT3'
#10 any:'DXT4'
#11 any:'DXT5'
#16 any:'UYVY'
#17 any:'YUY2'
#20 any:'RGBG'
#21 any:'GRGB'
rgb8.8.8 0:20 8:20
argb8.8.8.8 0:21 8:21
xrgb8.8.8.8 0:22 8:22
rgb5.6.5 4:23 8:23
xrgb1.5.5.5 4:24 8:24
argb1.5.5.5 4:25 8:25
argb4.4.4.4 4:26 8:26
rgb3.3.2 0:27 8:27
a8 0:28 8:28
argb8.3.3.2 4:29 8:29
abgr2.10.10.10 8:31 9:67
gr16.16 4:34 8:34 9:64 12:112
argb2.10.10.10 8:35
abgr16.16.16.16 4:36 8:36
l8 0:50 8:50
al8.8 0:51 8:51
al4.4 0:52 8:52
gr8.8 9:60
lgr6.5.5 9:61
xlgr8.8.8.8 9:62
abgr8.8.8.8 9:63
l16 4:81 8:81
r16 12:111
rgba16.16.16.16 12:113
r32 12:114
rg32.32 12:115
abgr32.32.32.32 12:116
)";

/// Decimal.
inline constexpr const char* kDXGIText = R"(
rgba32.32.32.32 12:2 10:3 11:4
rgb32.32.32 12:6 10:7 11:8
rgba16.16.16.16 12:10 4:11 6:12 5:13 7:14
rg32.32 12:16 10:17 11:18
rgba10.10.10.2 8:24 10:25
bgr10.11.11 12:26
rgba8.8.8.8 0:28/29 2:30 1:31 3:32
rg16.16 12:34 4:35 6:36 5:37 7:38
r32 12:41 10:42 11:43
rg8.8 0:49 2:50 1:51 3:52
r16 12:54 4:56 6:57 5:58 7:59
r8 0:61 2:62 1:63 3:64
a8 0:65
#18 any:66
#20 any:68
#21 any:69
#7 8:71/72
#9 8:74/75
#11 8:77/78
#12 8:80 9:81
#13 8:83 9:84
rgb5.6.5 4:85
argb1.5.5.5 4:86
bgra8.8.8.8 0:87/91
bgrx8.8.8.8 0:88/93
argb4.4.4.4 4:115
)";

/// Constants that come back as something else than what goes out as them: the constant, the format (- for a refusal), the
/// channel type, the colour space. Every asymmetry of the maps is a line here.
inline constexpr const char* kOpenGLAsymmetriesText = R"(
803E a16 0 0
8042 l16 0 0
9018 a16 1 0
9019 l16 1 0
8D70 rgba32.32.32.32 11 0
8D82 rgba32.32.32.32 10 0
8052 rgbx10.10.10.2 8 0
906F rgba10.10.10.2 10 0
8C3D #19 13 0
83F2 #9 0 0
83F3 #11 0 0
8048 - 0 0
901A - 0 0
8056 rgba4.4.4.4 4 0
9271 #25 1 0
9273 #26 1 0
)";

inline constexpr const char* kVulkanAsymmetriesText = R"(
2 rgba4.4.4.4 4 0
4 rgb5.6.5 4 0
6 rgba5.5.5.1 4 0
8 argb1.5.5.5 4 0
44 bgra8.8.8.8 0 0
50 bgra8.8.8.8 4 1
122 bgr10.11.11 13 0
123 #19 13 0
131 #7 0 0
132 #7 0 1
135 #9 0 0
136 #9 0 1
137 #11 0 0
138 #11 0 1
154 #25 1 0
156 #26 1 0
1000054000 #1 0 0
1000054004 #1 0 1
1000054001 #3 0 0
1000054005 #3 0 1
)";

/// The whole of the way back: this direction differs nearly everywhere.
inline constexpr const char* kDirect3DBackText = R"(
20 rgb8.8.8 8 0
21 argb8.8.8.8 8 0
22 xrgb8.8.8.8 8 0
23 rgb5.6.5 8 0
24 xrgb1.5.5.5 8 0
25 argb1.5.5.5 8 0
26 argb4.4.4.4 8 0
27 rgb3.3.2 8 0
28 a8 8 0
29 argb8.3.3.2 8 0
30 argb4.4.4.4 8 0
31 abgr2.10.10.10 8 0
32 abgr8.8.8.8 8 0
33 xbgr8.8.8.8 8 0
34 gr16.16 8 0
35 argb2.10.10.10 8 0
36 abgr16.16.16.16 8 0
50 l8 8 0
51 al8.8 8 0
52 al4.4 8 0
60 gr8.8 9 0
61 lgr6.5.5 9 0
62 xlgr8.8.8.8 9 0
63 abgr8.8.8.8 9 0
64 gr16.16 9 0
67 abgr2.10.10.10 9 0
81 l16 8 0
110 abgr16.16.16.16 9 0
111 r32 12 0
112 gr16.16 12 0
113 rgba16.16.16.16 12 0
114 r32 12 0
115 gr32.32 12 0
116 abgr32.32.32.32 12 0
'DXT1' #7 0 0
'DXT2' #8 0 0
'DXT3' #9 0 0
'DXT4' #10 0 0
'DXT5' #11 0 0
'TSL2' #1 0 0
'TSL4' #3 0 0
'UYVY' #16 0 0
'YUY2' #17 0 0
'RGBG' #20 0 0
'GRGB' #21 0 0
)";

inline constexpr const char* kDXGIAsymmetriesText = R"(
65 r8 0 0
67 #19 12 0
26 bgr10.11.11 13 0
80 #12 8 1
96 #15 12 1
98 #15 8 0
99 #15 8 1
107 #17 8 0
111 ai4.4 0 0
112 ia4.4 0 0
)";
} // namespace zortexture
