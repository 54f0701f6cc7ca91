<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>SKRSectionPolyDlg</name>
    <message>
        <source>型钢代号</source>
        <translation>Code</translation>
    </message>
    <message>
        <source>截面类型</source>
        <translation>Section type</translation>
    </message>
    <message>
        <source>规格示例</source>
        <translation>Example</translation>
    </message>
    <message>
        <source>ShowNormCode.jpg</source>
        <translation>ShowNormCode_en.jpg</translation>
    </message>
    <message>
        <source>规格示例：%1</source>
        <translation>Specification: %1</translation>
    </message>
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
    <message>
        <source>截面库</source>
        <translation>Section Library</translation>
    </message>
    <message>
        <source>快速搜索，如:C 200*70*20*2</source>
        <translation>Quick search, e.g. C 200*70*20*2</translation>
    </message>
    <message>
        <source>截面规格：</source>
        <translation>Specification:</translation>
    </message>
    <message>
        <source>添加自定义截面</source>
        <translation>Add Custom Section</translation>
    </message>
    <message>
        <source>编辑自定义截面</source>
        <translation>Edit Custom Section</translation>
    </message>
    <message>
        <source>删除自定义截面</source>
        <translation>Delete Custom Section</translation>
    </message>
    <message>
        <source>单构件输入</source>
        <translation>Single member input</translation>
    </message>
    <message>
        <source>查看型钢代号表</source>
        <translation>Type codes</translation>
    </message>
    <message>
        <source>查看截面样式</source>
        <translation>Section style</translation>
    </message>
    <message>
        <source>焊接球形式：</source>
        <translation>Weld ball form:</translation>
    </message>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Notice</translation>
    </message>
    <message>
        <source>删除该自定义截面，将会删除三维模型中的所有该截面图元和构件</source>
        <translation>Deleting this custom section deletes every element and member of this section in the 3D model</translation>
    </message>
    <message>
        <source>删除自定义热轧截面</source>
        <translation>delete custom hot-rolled section</translation>
    </message>
    <message>
        <source>添加自定义热轧截面</source>
        <translation>add custom hot-rolled section</translation>
    </message>
    <message>
        <source>编辑自定义热轧截面</source>
        <translation>edit custom hot-rolled section</translation>
    </message>
    <message>
        <source>撤消“%1”操作</source>
        <translation>Undo “%1”</translation>
    </message>
    <message>
        <source>恢复“%1”操作</source>
        <translation>Redo “%1”</translation>
    </message>
    <message>
        <source>仅支持</source>
        <translation>Only </translation>
    </message>
    <message>
        <source>为“</source>
        <translation> of type “</translation>
    </message>
    <message>
        <source>”,请选择“</source>
        <translation>” is supported, please choose a “</translation>
    </message>
    <message>
        <source>”截面</source>
        <translation>” section</translation>
    </message>
    <message>
        <source>请在左侧选择截面类型</source>
        <translation>Choose a section type on the left</translation>
    </message>
    <message>
        <source>请在列表中选择一个截面规格</source>
        <translation>Choose a section in the list</translation>
    </message>
    <message>
        <source>型钢代号表</source>
        <translation>Type codes</translation>
    </message>
    <message>
        <source>规格</source>
        <translation>Specification</translation>
    </message>
    <message>
        <source>延米重(kg/m)</source>
        <translation>kg/m</translation>
    </message>
    <message>
        <source>表面积(m2/m)</source>
        <translation>m2/m</translation>
    </message>
    <message>
        <source>延米重(kg/m):</source>
        <translation>Weight (kg/m):</translation>
    </message>
    <message>
        <source>表面积(m2/m):</source>
        <translation>Surface (m2/m):</translation>
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
<context>
    <name>SKRUserHotRollingSectionDialog</name>
    <message>
        <source>添加自定义截面</source>
        <translation>Add Custom Section</translation>
    </message>
    <message>
        <source>编辑自定义截面</source>
        <translation>Edit Custom Section</translation>
    </message>
    <message>
        <source>截面代号(ZDY)</source>
        <translation>Section code (ZDY)</translation>
    </message>
    <message>
        <source>规格尺寸:</source>
        <translation>Size:</translation>
    </message>
    <message>
        <source>延米重(kg/m):</source>
        <translation>Weight (kg/m):</translation>
    </message>
    <message>
        <source>表面积(m2/m):</source>
        <translation>Surface (m2/m):</translation>
    </message>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Notice</translation>
    </message>
    <message>
        <source>输入的“规格尺寸”有误，请查证。</source>
        <translation>The size entered is wrong, please check it.</translation>
    </message>
    <message>
        <source>注：规格名称已存在,请重新输入.</source>
        <translation>Note: this specification exists already, please enter another.</translation>
    </message>
    <message>
        <source>注:自定义截面会在规格字符串后自动增加-(ZDY),如Z270*80*8*3(ZDY)</source>
        <translation>Note: a custom section gets (ZDY) appended to its specification, e.g. Z270*80*8*3(ZDY)</translation>
    </message>
    <message>
        <source>注:编辑自定义截面,无法修改截面代号和规格尺寸.</source>
        <translation>Note: the code and size of a custom section cannot be changed.</translation>
    </message>
</context>
<context>
    <name>BXQMainWindow</name>
    <message>
        <source>截面类型</source>
        <translation>Section type</translation>
    </message>
    <message>
        <source>规格</source>
        <translation>Specification</translation>
    </message>
    <message>
        <source>插入点</source>
        <translation>Insertion point</translation>
    </message>
    <message>
        <source>延米重(kg/m)</source>
        <translation>kg/m</translation>
    </message>
    <message>
        <source>表面积(m2/m)</source>
        <translation>m2/m</translation>
    </message>
    <message>
        <source>面钢类别</source>
        <translation>Plate class</translation>
    </message>
    <message>
        <source>厚度(mm)</source>
        <translation>Thickness (mm)</translation>
    </message>
    <message>
        <source>重量(kg/m2)</source>
        <translation>Weight (kg/m2)</translation>
    </message>
    <message>
        <source>自定义截面</source>
        <translation>Custom section</translation>
    </message>
    <message>
        <source>类型</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>所选截面</source>
        <translation>Chosen sections</translation>
    </message>
    <message>
        <source>所选面钢</source>
        <translation>Chosen plates</translation>
    </message>
    <message>
        <source>项目的自定义截面</source>
        <translation>The project's custom sections</translation>
    </message>
    <message>
        <source>截面库...</source>
        <translation>Section Library...</translation>
    </message>
    <message>
        <source>面钢...</source>
        <translation>Face Steel...</translation>
    </message>
    <message>
        <source>撤消</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>恢复</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>退出</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>项目</source>
        <translation>Project</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>截面</source>
        <translation>Sections</translation>
    </message>
    <message>
        <source>工具</source>
        <translation>Tools</translation>
    </message>
    <message>
        <source>无法撤消</source>
        <translation>Cannot undo</translation>
    </message>
    <message>
        <source>无法恢复</source>
        <translation>Cannot redo</translation>
    </message>
    <message>
        <source>已保存</source>
        <translation>Saved</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Notice</translation>
    </message>
    <message>
        <source>项目已修改，是否保存？</source>
        <translation>The project was changed. Save it?</translation>
    </message>
    <message>
        <source>三维视图未完整生成（已取消）</source>
        <translation>The 3D view was not built completely (cancelled)</translation>
    </message>
    <message>
        <source>全部显示</source>
        <translation>Fit all</translation>
    </message>
    <message>
        <source>删除切割面</source>
        <translation>Delete cutting plane</translation>
    </message>
    <message>
        <source>导出 IFC...</source>
        <translation>Export IFC...</translation>
    </message>
    <message>
        <source>导出 IFC</source>
        <translation>Export IFC</translation>
    </message>
    <message>
        <source>正在导出 IFC...</source>
        <translation>Exporting IFC...</translation>
    </message>
    <message>
        <source>已导出 %1</source>
        <translation>Exported %1</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>在构件上点取切割面的位置</source>
        <translation>Pick the cutting plane's position on a member</translation>
    </message>
    <message>
        <source>恢复“%1”操作</source>
        <translation>Redo "%1"</translation>
    </message>
    <message>
        <source>截面“%1”无法生成构件：%2</source>
        <translation>Section "%1" makes no member: %2</translation>
    </message>
    <message>
        <source>撤消“%1”操作</source>
        <translation>Undo "%1"</translation>
    </message>
    <message>
        <source>无法删除切割面 %1</source>
        <translation>Cannot delete cutting plane %1</translation>
    </message>
    <message>
        <source>无法移动切割面 %1</source>
        <translation>Cannot move cutting plane %1</translation>
    </message>
    <message>
        <source>无法给构件 %1 添加切割面：%2</source>
        <translation>Cannot add a cutting plane to member %1: %2</translation>
    </message>
    <message>
        <source>构件 %1</source>
        <translation>Member %1</translation>
    </message>
    <message>
        <source>构件 %1 没有长度</source>
        <translation>Member %1 has no length</translation>
    </message>
    <message>
        <source>构件没有截面</source>
        <translation>The member has no section</translation>
    </message>
    <message>
        <source>构件的起点和终点必须相距至少 1 mm</source>
        <translation>The member's start and end must be at least 1 mm apart</translation>
    </message>
    <message>
        <source>模型</source>
        <translation>Model</translation>
    </message>
    <message>
        <source>正在生成三维视图...</source>
        <translation>Building the 3D view...</translation>
    </message>
    <message>
        <source>没有选中的切割面</source>
        <translation>No cutting plane is selected</translation>
    </message>
    <message>
        <source>沿法向移动的距离 (mm)</source>
        <translation>Distance along the normal (mm)</translation>
    </message>
    <message>
        <source>添加切割面</source>
        <translation>Add cutting plane</translation>
    </message>
    <message>
        <source>添加构件</source>
        <translation>Add member</translation>
    </message>
    <message>
        <source>添加构件...</source>
        <translation>Add member...</translation>
    </message>
    <message>
        <source>点取构件上的一点以添加切割面</source>
        <translation>Click a point of a member to add a cutting plane</translation>
    </message>
    <message>
        <source>移动切割面</source>
        <translation>Move cutting plane</translation>
    </message>
    <message>
        <source>移动切割面...</source>
        <translation>Move cutting plane...</translation>
    </message>
    <message>
        <source>移动距离必须不小于 0.0001 mm</source>
        <translation>The distance must be at least 0.0001 mm</translation>
    </message>
    <message>
        <source>终点 x,y,z (mm)</source>
        <translation>End x,y,z (mm)</translation>
    </message>
    <message>
        <source>终点“%1”不是 x,y,z</source>
        <translation>End "%1" is not x,y,z</translation>
    </message>
    <message>
        <source>视图</source>
        <translation>View</translation>
    </message>
    <message>
        <source>请点取构件上的一点</source>
        <translation>Click a point of a member</translation>
    </message>
    <message>
        <source>起点 x,y,z (mm)</source>
        <translation>Start x,y,z (mm)</translation>
    </message>
    <message>
        <source>起点“%1”不是 x,y,z</source>
        <translation>Start "%1" is not x,y,z</translation>
    </message>
    <message>
        <source>项目中没有构件 %1</source>
        <translation>The project has no member %1</translation>
    </message>
    <message>
        <source>轴测</source>
        <translation>Iso</translation>
    </message>
    <message>
        <source>前视</source>
        <translation>Front</translation>
    </message>
    <message>
        <source>俯视</source>
        <translation>Top</translation>
    </message>
    <message>
        <source>右视</source>
        <translation>Right</translation>
    </message>
</context>
<context>
    <name>BXQModelView</name>
    <message>
        <source>三维视图需要 OpenGL，此平台没有可用的 OpenGL。</source>
        <translation>The 3D view needs OpenGL, which this platform does not offer.</translation>
    </message>
</context>
<context>
    <name>SKRSectionPolyDB</name>
    <message>
        <source>热轧工字钢</source>
        <translation>I-beam</translation>
    </message>
    <message>
        <source>热轧槽钢</source>
        <translation>Channel</translation>
    </message>
    <message>
        <source>热轧等边角钢</source>
        <translation>Equal angle</translation>
    </message>
    <message>
        <source>热轧不等边角钢</source>
        <translation>Unequal angle</translation>
    </message>
    <message>
        <source>圆钢管</source>
        <translation>Steel pipe</translation>
    </message>
    <message>
        <source>圆钢</source>
        <translation>Round bar</translation>
    </message>
    <message>
        <source>热轧H型钢</source>
        <translation>Rolled H</translation>
    </message>
    <message>
        <source>冷弯卷边槽钢</source>
        <translation>Lipped C</translation>
    </message>
    <message>
        <source>冷弯卷边Z型钢</source>
        <translation>Lipped Z</translation>
    </message>
    <message>
        <source>剖分T型钢</source>
        <translation>Split T</translation>
    </message>
    <message>
        <source>焊接H型钢</source>
        <translation>Welded H</translation>
    </message>
    <message>
        <source>焊接不等翼缘H型钢</source>
        <translation>Unequal H</translation>
    </message>
    <message>
        <source>焊接箱形截面</source>
        <translation>Welded box</translation>
    </message>
    <message>
        <source>焊接圆管</source>
        <translation>Welded pipe</translation>
    </message>
    <message>
        <source>焊接十字形截面</source>
        <translation>Welded cross</translation>
    </message>
    <message>
        <source>焊接T型钢</source>
        <translation>Welded T</translation>
    </message>
    <message>
        <source>焊接楔形H型钢</source>
        <translation>Tapered H</translation>
    </message>
    <message>
        <source>焊接变径圆管</source>
        <translation>Tapered pipe</translation>
    </message>
    <message>
        <source>焊接变截面箱形</source>
        <translation>Tapered box</translation>
    </message>
    <message>
        <source>焊接双高度H型钢</source>
        <translation>Two-depth H</translation>
    </message>
    <message>
        <source>焊接变截面椭圆管</source>
        <translation>Tapered oval tube</translation>
    </message>
    <message>
        <source>方矩管</source>
        <translation>Box tube</translation>
    </message>
    <message>
        <source>螺栓球</source>
        <translation>Bolted ball</translation>
    </message>
    <message>
        <source>焊接空心球</source>
        <translation>Welded ball</translation>
    </message>
    <message>
        <source>加肋焊接空心球</source>
        <translation>Ribbed welded ball</translation>
    </message>
    <message>
        <source>型钢截面</source>
        <translation>Rolled sections</translation>
    </message>
    <message>
        <source>焊接截面</source>
        <translation>Welded sections</translation>
    </message>
    <message>
        <source>自定义截面</source>
        <translation>Custom sections</translation>
    </message>
</context>
<context>
    <name>BXQFaceSteelDialog</name>
    <message>
        <source>钢板类型库</source>
        <translation>Steel plate library</translation>
    </message>
    <message>
        <source>钢板分类</source>
        <translation>Plate class</translation>
    </message>
    <message>
        <source>厚度(mm)</source>
        <translation>t (mm)</translation>
    </message>
    <message>
        <source>重量(kg/m2)</source>
        <translation>kg/m²</translation>
    </message>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Notice</translation>
    </message>
    <message>
        <source>请先选中钢板信息</source>
        <translation>Please choose a plate first</translation>
    </message>
    <message>
        <source>热轧钢板</source>
        <translation>Hot-rolled plate</translation>
    </message>
    <message>
        <source>冷轧钢板</source>
        <translation>Cold-rolled plate</translation>
    </message>
    <message>
        <source>菱形花纹钢板</source>
        <translation>Diamond plate</translation>
    </message>
    <message>
        <source>扁豆形花纹钢板</source>
        <translation>Lentil plate</translation>
    </message>
    <message>
        <source>圆豆形花纹钢板</source>
        <translation>Bean plate</translation>
    </message>
</context>
</TS>
