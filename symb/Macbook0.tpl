; 觀測手簿 (全站儀 .OBS 觀測紀錄, 點名取自 .MAC 地籍觀測簿) 匯出 Excel 的版面.
; 每一欄寫一行: 欄位代碼,欄標題,欄寬(字元數, 可省略).
; 欄的先後就是這些行的先後; 不要的欄刪去, 或在行首加上 ; 即可.
; 欄標題與欄寬可以改, 欄位代碼不可改.
; 欄位代碼: setup 站次, station 測站, backsight 後視, point 點名, hz 水平度盤讀數,
;   turned 水平角(自後視起算), azimuth 方位角, zenith 天頂角, slope 斜距, horizontal 平距,
;   ih 儀器高, th 覘標高, e 橫座標, n 縱座標, h 高程, time 觀測時間.
標題,觀測手簿
工作表,觀測手簿
setup,站次,6
station,測站,10
backsight,後視,10
point,點名,10
hz,水平度盤讀數,13
turned,水平角,13
zenith,天頂角,13
slope,斜距(m),10
horizontal,平距(m),10
ih,儀器高(m),9
th,覘標高(m),9
e,橫座標E(m),13
n,縱座標N(m),13
h,高程H(m),10
azimuth,方位角,13
time,觀測時間,20
