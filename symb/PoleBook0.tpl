; 放樣手簿 (全站儀放樣 .STK 與 GPS 放樣 .GSTK) 匯出 Excel 的版面.
; 每一欄寫一行: 欄位代碼,欄標題,欄寬(字元數, 可省略).
; 欄的先後就是這些行的先後; 不要的欄刪去, 或在行首加上 ; 即可.
; 欄標題與欄寬可以改, 欄位代碼不可改.
; 欄位代碼: source 放樣方式, name 樁號, te 設計E, tn 設計N, e 放樣E, n 放樣N, h 放樣H,
;   de 差值ΔE, dn 差值ΔN, dist 偏差, station 測站, backsight 後視, hz 水平角, zenith 天頂角,
;   slope 斜距, ih 儀器高, th 覘標高, se σE, sn σN, sh σH, time 時間 (GPS).
標題,放樣手簿
工作表,放樣手簿
source,放樣方式,9
name,樁號,12
te,設計E(m),13
tn,設計N(m),13
e,放樣E(m),13
n,放樣N(m),13
h,放樣H(m),10
de,差值ΔE(m),10
dn,差值ΔN(m),10
dist,偏差(m),9
station,測站,10
backsight,後視,10
hz,水平角,13
zenith,天頂角,13
slope,斜距(m),10
ih,儀器高(m),9
th,覘標高(m),9
se,σE(m),8
sn,σN(m),8
sh,σH(m),8
time,時間,20
