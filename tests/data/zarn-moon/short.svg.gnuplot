set terminal svg size 900,450 background 'white'
$night << END
1782069480 17.685 -67.709 NaN NaN 41.326 NaN NaN
1782069720 17.295 -67.576 NaN NaN 40.834 NaN NaN
1782069960 16.901 -67.441 NaN NaN 40.344 NaN NaN
1782070200 16.501 -67.304 NaN NaN 39.854 NaN NaN
1782070440 16.097 -67.164 NaN NaN 39.366 NaN NaN
1782070680 15.688 -67.021 NaN NaN 38.880 NaN NaN
1782070920 15.275 -66.877 NaN NaN 38.396 NaN NaN
1782071160 14.857 -66.730 NaN NaN 37.913 NaN NaN
1782071400 14.435 -66.582 NaN NaN 37.432 NaN NaN
1782071640 14.009 -66.431 NaN NaN 36.953 NaN NaN
1782071880 13.579 -66.278 NaN NaN 36.476 NaN NaN
1782072120 13.145 -66.124 NaN NaN 36.001 NaN NaN
1782072360 12.707 -65.968 NaN NaN 35.528 NaN NaN
1782072600 12.266 -65.810 NaN NaN 35.058 NaN NaN
1782072840 11.821 -65.651 NaN NaN 34.589 NaN NaN
1782073080 11.373 -65.490 NaN NaN 34.123 NaN NaN
1782073320 10.922 -65.328 NaN NaN 33.660 NaN NaN
1782073560 10.467 -65.164 NaN NaN 33.199 NaN NaN
1782073800 10.009 -64.999 NaN NaN 32.740 NaN NaN
1782074040 9.548 -64.833 NaN NaN 32.285 NaN NaN
1782074280 9.085 -64.666 NaN NaN 31.832 NaN NaN
1782074520 8.619 -64.497 NaN NaN 31.381 NaN NaN
1782074760 8.150 -64.328 NaN NaN 30.934 NaN NaN
1782075000 7.678 -64.158 NaN NaN 30.489 NaN NaN
1782075240 7.205 -63.986 NaN NaN 30.048 NaN NaN
1782075480 6.729 -63.814 NaN NaN 29.609 NaN NaN
1782075720 6.250 -63.642 NaN NaN 29.174 NaN NaN
1782075960 5.770 -63.468 NaN NaN 28.742 NaN NaN
1782076200 5.288 -63.295 NaN NaN 28.313 NaN NaN
1782076440 4.804 -63.120 NaN NaN 27.888 NaN NaN
1782076680 4.318 -62.945 NaN NaN 27.465 NaN NaN
1782076920 3.831 -62.770 NaN NaN 27.047 NaN NaN
1782077160 3.342 -62.594 NaN NaN 26.632 NaN NaN
1782077400 2.851 -62.418 NaN NaN 26.220 NaN NaN
1782077640 2.360 -62.242 NaN NaN 25.812 NaN NaN
1782077880 1.867 -62.065 NaN NaN 25.408 NaN NaN
1782078120 1.373 -61.888 NaN NaN 25.008 NaN NaN
1782078360 0.878 -61.712 NaN NaN 24.611 NaN NaN
1782078600 0.382 -61.535 NaN NaN 24.218 NaN NaN
1782078840 -0.115 -61.358 NaN NaN 23.830 NaN NaN
1782079080 -0.612 -61.182 NaN NaN 23.445 NaN NaN
1782079320 -1.110 -61.005 NaN NaN 23.065 NaN NaN
1782079560 -1.609 -60.829 NaN NaN 22.689 NaN NaN
1782079800 -2.108 -60.653 NaN NaN 22.317 NaN NaN
1782080040 -2.607 -60.477 NaN NaN 21.949 NaN NaN
1782080280 -3.106 -60.301 NaN NaN 21.585 NaN NaN
1782080520 -3.606 -60.126 NaN NaN 21.227 NaN NaN
1782080760 -4.105 -59.952 NaN NaN 20.872 NaN NaN
1782081000 -4.604 -59.777 NaN NaN 20.522 NaN NaN
1782081240 -5.104 -59.603 NaN NaN 20.177 NaN NaN
1782081480 -5.602 -59.430 NaN NaN 19.837 NaN NaN
1782081720 -6.101 -59.258 NaN NaN 19.501 NaN NaN
1782081960 -6.599 -59.086 NaN NaN 19.170 NaN NaN
1782082200 -7.096 -58.914 NaN NaN 18.844 NaN NaN
1782082440 -7.592 -58.744 NaN NaN 18.523 NaN NaN
1782082680 -8.088 -58.574 NaN NaN 18.206 NaN NaN
1782082920 -8.583 -58.405 NaN NaN 17.895 NaN NaN
1782083160 -9.077 -58.236 NaN NaN 17.589 NaN NaN
1782083400 -9.569 -58.069 NaN NaN 17.288 NaN NaN
1782083640 -10.061 -57.903 NaN NaN 16.993 NaN NaN
1782083880 -10.551 -57.737 NaN NaN 16.702 NaN NaN
1782084120 -11.039 -57.573 NaN NaN 16.417 NaN NaN
1782084360 -11.526 -57.409 NaN NaN 16.138 NaN NaN
1782084600 -12.012 -57.247 NaN NaN 15.864 NaN NaN
1782084840 -12.495 -57.085 NaN NaN 15.595 NaN NaN
1782085080 -12.977 -56.925 NaN NaN 15.332 NaN NaN
1782085320 -13.456 -56.766 NaN NaN 15.075 NaN NaN
1782085560 -13.934 -56.608 NaN NaN 14.823 NaN NaN
1782085800 -14.409 -56.451 NaN NaN 14.577 NaN NaN
1782086040 -14.883 -56.296 NaN NaN 14.336 NaN NaN
1782086280 -15.353 -56.141 NaN NaN 14.102 NaN NaN
1782086520 -15.821 -55.988 NaN NaN 13.873 NaN NaN
1782086760 -16.287 -55.837 NaN NaN 13.651 NaN NaN
1782087000 -16.749 -55.687 NaN NaN 13.434 NaN NaN
1782087240 -17.209 -55.538 NaN NaN 13.223 NaN NaN
1782087480 -17.666 -55.390 NaN NaN 13.019 NaN NaN
1782087720 -18.119 -55.245 NaN NaN 12.820 NaN NaN
1782087960 -18.570 -55.100 NaN NaN 12.628 NaN NaN
1782088200 -19.017 -54.957 NaN NaN 12.441 NaN NaN
1782088440 -19.460 -54.816 NaN NaN 12.262 NaN NaN
1782088680 -19.900 -54.676 NaN NaN 12.088 NaN NaN
1782088920 -20.336 -54.538 NaN NaN 11.920 NaN NaN
1782089160 -20.769 -54.401 NaN NaN 11.759 NaN NaN
1782089400 -21.197 -54.266 NaN NaN 11.605 NaN NaN
1782089640 -21.621 -54.133 NaN NaN 11.457 NaN NaN
1782089880 -22.041 -54.001 NaN NaN 11.315 NaN NaN
1782090120 -22.457 -53.871 NaN NaN 11.180 NaN NaN
1782090360 -22.868 -53.743 NaN NaN 11.051 NaN NaN
1782090600 -23.274 -53.616 NaN NaN 10.929 NaN NaN
1782090840 -23.676 -53.492 NaN NaN 10.813 NaN NaN
1782091080 -24.073 -53.369 NaN NaN 10.704 NaN NaN
1782091320 -24.465 -53.248 NaN NaN 10.602 NaN NaN
1782091560 -24.852 -53.128 NaN NaN 10.506 NaN NaN
END
set object rectangle from 1782069360, graph 0 to 1782071280, graph 1 behind fillstyle solid noborder fillcolor rgb '#fdf6e3'
set object rectangle from 1782071280, graph 0 to 1782077760, graph 1 behind fillstyle solid noborder fillcolor rgb '#eceff6'
set object rectangle from 1782077760, graph 0 to 1782083280, graph 1 behind fillstyle solid noborder fillcolor rgb '#dde2ee'
set object rectangle from 1782083280, graph 0 to 1782089760, graph 1 behind fillstyle solid noborder fillcolor rgb '#eceff6'
set object rectangle from 1782089760, graph 0 to 1782091560, graph 1 behind fillstyle solid noborder fillcolor rgb '#fdf6e3'
set xdata time
set timefmt '%s'
set xtics ("20:00\n22:30" '1782072000', "21:00\n23:30" '1782075600', "22:00\n00:30" '1782079200', "23:00\n01:30" '1782082800', "00:00\n02:30" '1782086400', "01:00\n03:30" '1782090000')
set grid
set xrange [1782069480:1782091560]
set key outside top center horizontal
set lmargin 9
set rmargin 3
set arrow from 1782071270, graph 0 to 1782071270, graph 1 nohead linewidth 0.7 linecolor rgb '#707070'
set label 'sunset' at 1782071270, graph 0.98 right rotate by 90 offset 0.6,0 font ',8'
set arrow from 1782077665, graph 0 to 1782077665, graph 1 nohead linewidth 0.7 linecolor rgb '#707070'
set label 'civil dusk' at 1782077665, graph 0.98 right rotate by 90 offset 0.6,0 font ',8'
set arrow from 1782083365, graph 0 to 1782083365, graph 1 nohead linewidth 0.7 linecolor rgb '#707070'
set label 'civil dawn' at 1782083365, graph 0.98 right rotate by 90 offset 0.6,0 font ',8'
set arrow from 1782089760, graph 0 to 1782089760, graph 1 nohead linewidth 0.7 linecolor rgb '#707070'
set label 'sunrise' at 1782089760, graph 0.98 right rotate by 90 offset 0.6,0 font ',8'
set label 'moon' at graph 0.033, graph 0.183 center offset 0,0.6 noenhanced front
set label 'A galaxy with a name é la mode' at graph 0.174, graph 0.374 center offset 0,0.6 noenhanced front
set xlabel 'UT, and local time (XYZ) from 2026-06-21'."\n".'The sky at the targets is not drawn: none is up while the sun is below -18 degrees.' noenhanced offset 0,-1
set bmargin 6
set title 'Night of 2026-06-21 at the place (60.0000N 25.0000E): moon 50 % lit, bright' noenhanced
set ylabel 'altitude [degrees]'
set yrange [0:90]
set ytics 15
plot $night using 1:5 with lines linewidth 11 linecolor rgb '#900072b2' notitle, $night using 1:8 with lines linewidth 11 linecolor rgb '#90d55e00' notitle, NaN with lines linewidth 11 linecolor rgb '#90606060' title 'best window', $night using 1:2 with lines linewidth 3 linecolor rgb '#444444' dashtype (4,4) notitle, $night using 1:3 with lines linewidth 2.5 linecolor rgb '#0072b2' dashtype 1 notitle, $night using 1:6 with lines linewidth 2.5 linecolor rgb '#d55e00' dashtype (14,4) notitle
