<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>SKRSectionPolyDlg</name>
    <message>
        <source>自定义截面</source>
        <translation>CustomSection</translation>
    </message>
    <message>
        <source>截面规格输入错误，请重新输入截面信息</source>
        <translation>Wrong section specification, please enter the section again</translation>
    </message>
    <message>
        <source>截面规格输入错误，h1必须大于h2</source>
        <translation>Wrong section specification: h1 must be greater than h2</translation>
    </message>
    <message>
        <source>表达式有误</source>
        <translation>The expression is wrong</translation>
    </message>
</context>
<context>
    <name>SKRNumericValidator</name>
    <message>
        <source>请输入%1之间的实数, 如果是小数请保留%2位。</source>
        <translation>Please enter a real number in %1, with at most %2 decimals.</translation>
    </message>
    <message>
        <source>请输入%1之间的整数。</source>
        <translation>Please enter an integer in %1.</translation>
    </message>
</context>
<context>
    <name>VMPMessageBox</name>
    <message>
        <source>提示</source>
        <translation>Notice</translation>
    </message>
</context>
<context>
    <name>SKRSysInfo</name>
    <message>
        <source>[%0]文件不存在</source>
        <translation>[%0] file does not exist</translation>
    </message>
</context>
<context>
    <name>SKRSectionDbOperation</name>
    <message>
        <source>自定义截面</source>
        <translation>CustomSection</translation>
    </message>
    <message>
        <source>自定义截面类型</source>
        <translation>CustomSectionType</translation>
    </message>
</context>
</TS>
